// The reading vocabulary: value shapes with their defaults, list modes,
// lenient and strict range readers, the section transaction, the observer.

#include <QtTest/QtTest>

#include "common/xmlread.h"
#include "testutil.h"

using namespace LCD::ConfigModel;
using namespace LCD::ConfigModel::xml;

namespace {

QDomElement parse(const QByteArray& xml) {
    static QDomDocument doc; // keeps the element alive for the test row
    doc.setContent(xml, true);
    return doc.documentElement();
}

s_RangeValue range(qint32 s, qint32 e, qint32 v, qint32 t, qint32 mn, qint32 mx) {
    s_RangeValue r;
    r.support = s, r.editable = e, r.value = v, r.dataType = t, r.min = mn, r.max = mx;
    return r;
}

std::vector<qint32> values(const s_OptionList& o) {
    std::vector<qint32> out;
    for (EnumValue v : o.values)
        out.push_back(v.value);
    return out;
}

const Loader kLoader{kDeviceFile, nullptr, LCD_LOG_SITE};

} // namespace

Q_DECLARE_METATYPE(s_RangeValue)
Q_DECLARE_METATYPE(std::vector<qint32>)

class XmlReadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ranges_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("reader");
        QTest::addColumn<s_RangeValue>("expected");
        const s_RangeValue untouched;
        QTest::newRow("listed defaults, Value not read")
            << QByteArray("<R Value=\"7\"/>") << "listed" << range(1, 1, 0, 0, 0, 255);
        QTest::newRow("listed attributes override") << QByteArray("<R Support=\"0\" Max=\"abc\" Min=\"-4\"/>")
                                                    << "listed" << range(0, 1, 0, 0, -4, 0);
        QTest::newRow("lenient: no attributes") << QByteArray("<R/>") << "lenient" << range(1, 1, 0, 0, 0, 0);
        QTest::newRow("lenient: null element keeps defaults") << QByteArray() << "lenient" << untouched;
        QTest::newRow("strict: no attributes")
            << QByteArray("<P><R/></P>") << "strict" << range(0, 0, 0, 0, 0, 0);
        QTest::newRow("strict: all six")
            << QByteArray("<P><R Support=\"1\" Editable=\"0\" Value=\"3\" DataType=\"2\" "
                          "Min=\"1\" Max=\"9\"/></P>")
            << "strict" << range(1, 0, 3, 2, 1, 9);
    }

    void ranges() {
        QFETCH(QByteArray, xml);
        QFETCH(QString, reader);
        QFETCH(s_RangeValue, expected);
        const QDomElement e = xml.isEmpty() ? QDomElement() : parse(xml);
        s_RangeValue r;
        if (reader == "listed") {
            r = readRange(
                e, {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Min", "0"}, {"Max", "255"}});
        } else if (reader == "lenient") {
            readRangeLenient(e, r);
        } else {
            QString error;
            QVERIFY(readRangeStrict(e, "R", r, error,
                                    {"Support", "Editable", "Value", "Min", "Max", "DataType"}));
        }
        QCOMPARE(r, expected);
        QCOMPARE(r.step, 1.0);
    }

    void strictReaderNeedsItsElement() {
        s_RangeValue r;
        QString error;
        QVERIFY(!readRangeStrict(parse("<P><X/></P>"), "Gamma", r, error, {"Support"}));
        QCOMPARE(error, QStringLiteral("Invalid [Gamma] node."));
        QCOMPARE(r, s_RangeValue());
    }

    void optionLists_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<int>("mode");
        QTest::addColumn<std::vector<qint32>>("expected");
        const QByteArray mixed =
            "<S><Title Value=\"9\"/><Enum Value=\"0\"/><Enum Value=\"1\"/><Other Value=\"5\"/></S>";
        QTest::newRow("any child") << mixed << int(ListFrom::AnyChild) << std::vector<qint32>{9, 0, 1, 5};
        QTest::newRow("Enum-first, then any name")
            << mixed << int(ListFrom::EnumFirst) << std::vector<qint32>{0, 1, 5};
        QTest::newRow("Enum-first without Enum")
            << QByteArray("<S><X Value=\"1\"/></S>") << int(ListFrom::EnumFirst) << std::vector<qint32>{};
        QTest::newRow("none") << mixed << int(ListFrom::None) << std::vector<qint32>{};
        QTest::newRow("absent value and duplicates")
            << QByteArray("<S><E/><E Value=\"2\"/><E Value=\"2\"/></S>") << int(ListFrom::AnyChild)
            << std::vector<qint32>{0, 2, 2};
    }

    void optionLists() {
        QFETCH(QByteArray, xml);
        QFETCH(int, mode);
        QFETCH(std::vector<qint32>, expected);
        const s_OptionList o =
            readOptions(parse(xml), {{"Support", "1"}, {"Value", "110"}}, static_cast<ListFrom>(mode));
        QCOMPARE(values(o), expected);
        QCOMPARE(o.support, 1);
        QCOMPARE(o.editable, -1); // not listed, not read
        QCOMPARE(o.value, 110);
    }

    void textRangeAndSettings() {
        const QDomElement e = parse("<Ip Support=\"1\" Value=\"192.168.0.10\" Max=\"15\"/>");
        const s_TextRange t =
            readTextRange(e, {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Value", "0"}});
        QCOMPARE(t.text, std::string("192.168.0.10"));
        QCOMPARE(t.max, 255); // "Max" not listed
        QCOMPARE(t.editable, 1);
        const s_ValueSetting v = readValueSetting(parse("<D/>"), {{"Value", "0"}, {"Support", "1"}});
        QCOMPARE(v.support, 1);
        QCOMPARE(v.editable, -1);
        const std::vector<s_RangeValue> list = readRangeList(
            parse("<File><A/><B Value=\"3\"/></File>"),
            {{"Support", ""}, {"Editable", ""}, {"Value", ""}, {"DataType", ""}, {"Min", ""}, {"Max", ""}});
        QCOMPARE(list.size(), size_t(2));
        QCOMPARE(list[0], range(0, 0, 0, 0, 0, 0));
        QCOMPARE(list[1].value, 3);
    }

    void transactionCommitsOnlyComplete() {
        const QDomElement root = parse("<Features><Genlock Support=\"1\"><Type/></Genlock></Features>");
        s_SupportInfo stored;
        stored.support = 7;
        QString error = "earlier";
        test::MessageRecorder recorder;
        const bool complete = transact(stored, error, kLoader, [&](Section& s, s_SupportInfo& local) {
            const QDomElement genlock = s.need(root, "Genlock");
            local = readPair(genlock);
            s.need(s.need(genlock, "Phase"), "Offset"); // Phase is missing: Offset is never asked for
        });
        QVERIFY(!complete);
        QCOMPARE(stored.support, 7); // nothing of the section reached the record
        QCOMPARE(error, QStringLiteral("Invalid [Phase] node."));
        QVERIFY(recorder.messages().isEmpty());

        QVERIFY(transact(stored, error, kLoader, [&](Section& s, s_SupportInfo& local) {
            local = readPair(s.need(root, "Genlock"), "1", "0");
        }));
        QCOMPARE(stored, (s_SupportInfo{1, 0}));
        QCOMPARE(error, QStringLiteral("Invalid [Phase] node.")); // success leaves the message
    }

    void loggedLookupWarnsWithTheLoadersContext() {
        QString error;
        Section section(error, kLoader);
        test::MessageRecorder recorder;
        QVERIFY(section.needLogged(parse("<E/>"), "HDCP").isNull());
        QVERIFY(
            section.needLogged(parse("<E/>"), "General").isNull()); // section already ended: no second line
        QCOMPARE(recorder.warnings(), QStringList{"Log: Invalid [HDCP] node."});
        QCOMPARE(recorder.messages().first().category, QStringLiteral("default"));
        QVERIFY(recorder.messages().first().file.endsWith("tst_xmlread.cpp"));
    }

    void observerSeesLookupsAndReads() {
        struct Recorder : ReadObserver {
            QStringList seen;
            void elementVisited(const QDomElement& e) override { seen << e.tagName(); }
            void attributeRead(const QDomElement& e, const QString& name, bool present) override {
                seen << e.tagName() + "@" + name + (present ? "" : "?");
            }
        } observer;
        const QDomElement root = parse("<R><A Support=\"1\"/><B/></R>");
        setReadObserver(&observer);
        forEachChild(root, [](const QDomElement& e) { intAttr(e, "Support", "1"); });
        setReadObserver(nullptr);
        intAttr(root, "Ignored");
        QCOMPARE(observer.seen, (QStringList{"A", "A@Support", "B", "B@Support?"}));
    }
};

QTEST_GUILESS_MAIN(XmlReadTest)
#include "tst_xmlread.moc"
