// The reading vocabulary: the range readers with their defaults, the section
// transaction and the observer. The list modes, the text and list shapes and
// the logged lookup are pinned where the parsers use them (tst_feature,
// tst_layerfile, tst_screenfile, tst_connector).

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

const Loader kLoader{kDeviceFile, nullptr, LCD_LOG_SITE};

} // namespace

Q_DECLARE_METATYPE(s_RangeValue)

class XmlReadTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ranges_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("reader");
        QTest::addColumn<s_RangeValue>("expected");
        const s_RangeValue untouched;
        QTest::newRow("listed defaults, Value not read")
            << QByteArray("<R Value=\"7\"/>") << "listed" << s_RangeValue{1, 1, 0, 0, 0, 255};
        QTest::newRow("listed attributes override") << QByteArray("<R Support=\"0\" Max=\"abc\" Min=\"-4\"/>")
                                                    << "listed" << s_RangeValue{0, 1, 0, 0, -4, 0};
        QTest::newRow("lenient: no attributes")
            << QByteArray("<R/>") << "lenient" << s_RangeValue{1, 1, 0, 0, 0, 0};
        QTest::newRow("lenient: null element keeps defaults") << QByteArray() << "lenient" << untouched;
        QTest::newRow("strict: no attributes")
            << QByteArray("<P><R/></P>") << "strict" << s_RangeValue{0, 0, 0, 0, 0, 0};
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
