// The reading vocabulary: the range readers with their defaults, the section
// transaction and the observer. The list modes, the text and list shapes and
// the logged lookup are pinned where the parsers use them (tst_feature,
// tst_layerfile, tst_screenfile, tst_connector).

#include <QtCore/QXmlStreamReader>
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
Q_DECLARE_METATYPE(Missing)

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
            r = readAs<s_RangeValue>(
                e, {{"Support", "1"}, {"Editable", "1"}, {"DataType", "0"}, {"Min", "0"}, {"Max", "255"}});
        } else if (reader == "lenient") {
            update(e, kLenient, r);
        } else {
            QString error;
            Section s(error, kLoader);
            update(s.need(e, "R"), kEmpty, r);
            QVERIFY(s.complete());
        }
        LCD_COMPARE_RECORDS(r, expected);
        QCOMPARE(r.step, 1.0);
    }

    // The in-place conversion gives exactly what QString::toInt gives, for
    // the texts of every attribute shipped and for the tricky ones below.
    void decimalIsToInt_data() {
        QTest::addColumn<QString>("text");
        QDirIterator files(test::sharedConfig(QString()), {"*.xml"}, QDir::Files,
                           QDirIterator::Subdirectories);
        QSet<QString> shipped;
        while (files.hasNext()) {
            QFile file(files.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            for (QXmlStreamReader reader(&file); !reader.atEnd();)
                if (reader.readNext() == QXmlStreamReader::StartElement)
                    for (const QXmlStreamAttribute& a : reader.attributes())
                        shipped.insert(a.value().toString());
        }
        QVERIFY(shipped.size() > 50);
        for (const QString& text : shipped)
            QTest::newRow(qPrintable("shipped '" + text + "'")) << text;
        // Separated by "|": the empty text comes first.
        const QByteArray tricky = "|-|+|+7|-0|007| 7|7 |\t7\n|7a|0x10|1e3|1.0|1,000|--1|999999999|-999999999|"
                                  "2147483647|2147483648|-2147483648|-2147483649|99999999999|0000000000012|"
                                  "\xc2\xa0"
                                  "5|\xd9\xa3";
        for (const QByteArray& text : tricky.split('|'))
            QTest::newRow(qPrintable(QStringLiteral("tricky '%1'").arg(QString::fromUtf8(text))))
                << QString::fromUtf8(text);
    }

    void decimalIsToInt() {
        QFETCH(QString, text);
        bool expectedOk = false, ok = !expectedOk;
        const qint32 expected = text.toInt(&expectedOk);
        QCOMPARE(xml::detail::decimal(text, &ok), expected);
        QCOMPARE(ok, expectedOk);
        const QByteArray latin = text.toLatin1();
        if (QString::fromLatin1(latin) == text) { // the defaults' form
            QCOMPARE(xml::detail::decimal(latin.constData(), &ok), expected);
            QCOMPARE(ok, expectedOk);
        }
    }

    void transactionCommitsOnlyComplete() {
        const QDomElement root = parse("<Features><Genlock Support=\"1\"><Type/></Genlock></Features>");
        s_SupportInfo stored;
        stored.support = 7;
        QString error = "earlier";
        test::MessageRecorder recorder;
        const bool complete = transact(stored, error, kLoader, [&](Section& s, s_SupportInfo& local) {
            const QDomElement genlock = s.need(root, "Genlock");
            local = readAs<s_SupportInfo>(genlock, kLenientPair);
            s.need(s.need(genlock, "Phase"), "Offset"); // Phase is missing: Offset is never asked for
        });
        QVERIFY(!complete);
        QCOMPARE(stored.support, 7); // nothing of the section reached the record
        QCOMPARE(error, QStringLiteral("Invalid [Phase] node."));
        QVERIFY(recorder.messages().isEmpty());

        QVERIFY(transact(stored, error, kLoader, [&](Section& s, s_SupportInfo& local) {
            local = readAs<s_SupportInfo>(s.need(root, "Genlock"), {{"Support", "1"}, {"Editable", "0"}});
        }));
        LCD_COMPARE_RECORDS(stored, (s_SupportInfo{1, 0}));
        QCOMPARE(error, QStringLiteral("Invalid [Phase] node.")); // success leaves the message
    }

    // Two absent children, then a present one: what each policy does to the
    // section, the message and the warnings.
    void missingPolicies_data() {
        QTest::addColumn<Missing>("missing");
        QTest::addColumn<bool>("walkGoesOn");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QStringList>("warnings");
        QTest::newRow("ends") << Missing::Ends << false << "Invalid [X] node." << QStringList();
        QTest::newRow("ends, logged")
            << Missing::EndsLogged << false << "Invalid [X] node." << QStringList{"Log: Invalid [X] node."};
        QTest::newRow("noted") << Missing::Noted << true << "Invalid [Y] node." << QStringList();
        QTest::newRow("noted, logged") << Missing::NotedLogged << true << "Invalid [Y] node."
                                       << QStringList{"Log: Invalid [X] node.", "Log: Invalid [Y] node."};
    }

    void missingPolicies() {
        QFETCH(Missing, missing);
        QFETCH(bool, walkGoesOn);
        QFETCH(QString, error);
        QFETCH(QStringList, warnings);
        const QDomElement root = parse("<R><A/></R>");
        QString written;
        test::MessageRecorder recorder;
        Section s(written, kLoader);
        QVERIFY(s.need(root, "X", missing).isNull());
        QVERIFY(s.need(root, "Y", missing).isNull());
        QCOMPARE(!s.need(Children(root), "A", missing).isNull(), walkGoesOn);
        QCOMPARE(s.complete(), walkGoesOn);
        QCOMPARE(written, error);
        QCOMPARE(recorder.warnings(), warnings);
    }

    void observerSeesLookupsAndReads() {
        struct Recorder : LoadObserver {
            QStringList seen;
            void elementFound(const QDomElement& e) override { seen << e.tagName(); }
            void elementMissing(const QDomElement& parent, const char* name) override {
                seen << QStringLiteral("%1/%2? at %3:%4")
                            .arg(parent.tagName(), QLatin1String(name))
                            .arg(parent.lineNumber())
                            .arg(parent.columnNumber());
            }
            void attributeRead(const AttributeRead& r) override {
                seen << QStringLiteral("%1@%2%3=%4 (%5, default '%6')%7")
                            .arg(r.element.tagName(), QLatin1String(r.name), r.present ? "" : "?", r.stored,
                                 r.raw, QLatin1String(r.def), r.validNumber ? "" : " bad");
            }
            void textRead(const QDomElement& e, ReadKind kind) override {
                seen << e.tagName() + (kind == ReadKind::Int ? "#number" : "#text");
            }
        } observer;
        const QDomElement root = parse("<R>\n <A Support=\"x1\"/><B>7</B></R>");
        setLoadObserver(&observer);
        forEachChild(root, [](const QDomElement& e) { intAttr(e, "Support", "1"); });
        child(root, "C");
        intText(child(root, "B"));
        setLoadObserver(nullptr);
        intAttr(root, "Ignored");
        QCOMPARE(observer.seen,
                 (QStringList{"A", "A@Support=0 (x1, default '1') bad", "B", "B@Support?=1 (, default '1')",
                              "R/C? at 1:3", "B", "B#number"}));
    }
};

QTEST_GUILESS_MAIN(XmlReadTest)
#include "tst_xmlread.moc"
