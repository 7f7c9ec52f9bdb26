// The one document loader: each family's texts, the version rule, and the
// nesting limit that keeps hostile files from overflowing the DOM parser.

#include <QtCore/QElapsedTimer>
#include <QtCore/QXmlStreamReader>
#include <QtTest/QtTest>

#include "common/document.h"
#include "testutil.h"

using namespace LCD::ConfigModel;

namespace {

const DocumentFamily* familyNamed(const QString& name) {
    if (name == "device") return &kDeviceFile;
    if (name == "menu") return &kMenuFile;
    if (name == "hdr") return &kHdrFile;
    return &kUiFile;
}

// The deepest element nesting, as Qt's stream reader measures it.
int streamDepth(const QByteArray& data) {
    QXmlStreamReader reader(data);
    int depth = 0;
    int deepest = 0;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::StartElement)
            deepest = qMax(deepest, ++depth);
        else if (token == QXmlStreamReader::EndElement)
            --depth;
    }
    return deepest;
}

} // namespace

class DocumentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void familyTexts_data() {
        QTest::addColumn<QString>("family");
        QTest::addColumn<QString>("relative"); // file to create; empty: empty path
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected"); // %1: the path; empty: success

        const QByteArray vrn = "<Vrn><Device/></Vrn>";
        QTest::newRow("device: empty path") << "device"
                                            << "" << QByteArray() << "Invalid file path!\n";
        QTest::newRow("device: missing file") << "device"
                                              << "-" << QByteArray() << "Fail to open file [%1]!";
        QTest::newRow("device: empty file fails at parse")
            << "device"
            << "a.xml" << QByteArray() << "Parse error at line 1, column 1:\nunexpected end of file";
        QTest::newRow("device: root differs in case")
            << "device"
            << "a.xml" << QByteArray("<vrn/>") << "The file is not a valid configuration file for device.";
        QTest::newRow("device: version 1.0 with blank")
            << "device"
            << "a.xml" << QByteArray("<Vrn version=\"1.0 \"/>")
            << "The file is not a valid configuration file of version 1.0 for device.";
        QTest::newRow("device: version 1.00")
            << "device"
            << "a.xml" << QByteArray("<Vrn version=\"1.00\"/>")
            << "The file is not a valid configuration file of version 1.0 for device.";
        QTest::newRow("device: no version accepted") << "device"
                                                     << "a.xml" << vrn << "";
        QTest::newRow("device: version 1.0 accepted")
            << "device"
            << "a.xml" << QByteArray("<Vrn version=\"1.0\"/>") << "";

        QTest::newRow("menu: empty path") << "menu"
                                          << "" << QByteArray() << "Invalid file path!\n";
        QTest::newRow("menu: wrong root")
            << "menu"
            << "a.xml" << vrn << "The file is not a valid configuration file for device.";
        QTest::newRow("menu: version")
            << "menu"
            << "a.xml" << QByteArray("<LCD version=\"2.0\"/>")
            << "The file is not a valid configuration file of version 1.0 for device.";

        QTest::newRow("ui: empty path has no placeholder") << "ui"
                                                           << "" << QByteArray() << "Invalid file path!";
        QTest::newRow("ui: missing file") << "ui"
                                          << "-" << QByteArray() << "Fail to open file [%1]!";
        QTest::newRow("ui: root differs in case")
            << "ui"
            << "a.xml" << QByteArray("<lcd/>") << "This file is not a valid configuration file.";
        QTest::newRow("ui: version 1.0 with blank")
            << "ui"
            << "a.xml" << QByteArray("<LCD version=\" 1.0\"/>")
            << "This file is not a valid configuration file of version 1.0 .";
        QTest::newRow("ui: accepted") << "ui"
                                      << "a.xml" << QByteArray("<LCD version=\"1.0\"><LcdKeys/></LCD>") << "";
        QTest::newRow("hdr: root is Kalmir")
            << "hdr"
            << "a.xml" << QByteArray("<LCD/>") << "This file is not a valid configuration file.";
        QTest::newRow("hdr: accepted") << "hdr"
                                       << "a.xml" << QByteArray("<Kalmir/>") << "";
    }

    void familyTexts() {
        QFETCH(QString, family);
        QFETCH(QString, relative);
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);

        QTemporaryDir dir;
        QString path;
        if (relative == "-")
            path = dir.filePath("missing.xml");
        else if (!relative.isEmpty())
            path = test::writeFile(dir, relative, content);

        const Loader loader{*familyNamed(family), nullptr, LCD_LOG_SITE};
        QString error = QStringLiteral("earlier text");
        QDomDocument doc;
        test::MessageRecorder recorder;
        const bool ok = loadDocument(path, loader, doc, error);
        if (expected.isEmpty()) {
            QVERIFY(ok);
            QCOMPARE(error, QStringLiteral("earlier text")); // kept on success
        } else {
            QVERIFY(!ok);
            QCOMPARE(error,
                     expected.contains("%1") ? expected.arg(path) : expected); // overwritten on failure
        }

        // Only the UI families trace a failed open, with the loader's context.
        const bool traced = relative == "-" && (family == "ui" || family == "hdr");
        QCOMPARE(recorder.debugs().size(), traced ? 1 : 0);
        if (traced) {
            QCOMPARE(recorder.debugs().first(), QStringLiteral("open file: %1  error code: 5").arg(path));
            QCOMPARE(recorder.messages().first().category, QStringLiteral("default"));
            QVERIFY(recorder.messages().first().file.endsWith("tst_document.cpp"));
        }
    }

    void deviceTextsAreTranslated() {
        // The device family passes its texts through the loader class's
        // translation context; the UI family uses them as written.
        class Upper : public QTranslator {
        public:
            QString translate(const char* context, const char* source, const char*, int) const override {
                return QLatin1String(context) == "Ctx" ? QString::fromUtf8(source).toUpper() : QString();
            }
        } upper;
        QCoreApplication::installTranslator(&upper);
        QString error;
        QDomDocument doc;
        QVERIFY(!loadDocument(QString(), Loader{kDeviceFile, "Ctx", LCD_LOG_SITE}, doc, error));
        QCOMPARE(error, QStringLiteral("INVALID FILE PATH!\n"));
        QCOMPARE(Loader({kDeviceFile, "Ctx", LCD_LOG_SITE}).invalidNode("HDR"),
                 QStringLiteral("INVALID [HDR] NODE."));
        QVERIFY(!loadDocument(QString(), Loader{kUiFile, "Ctx", LCD_LOG_SITE}, doc, error));
        QCOMPARE(error, QStringLiteral("Invalid file path!"));
        QCoreApplication::removeTranslator(&upper);
    }

    void deepDocumentsAreRejected_data() {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("depth");
        QTest::addColumn<bool>("accepted");
        for (const char* family : {"device", "menu", "ui", "hdr"}) {
            QTest::addRow("%s: 100000 levels", family) << family << 100000 << false;
            QTest::addRow("%s: 257 levels", family) << family << 257 << false;
            QTest::addRow("%s: 256 levels", family) << family << 256 << true;
        }
    }

    void deepDocumentsAreRejected() {
        QFETCH(QString, family);
        QFETCH(int, depth);
        QFETCH(bool, accepted);
        const DocumentFamily& f = *familyNamed(family);
        QTemporaryDir dir;
        const QString path = test::writeFile(dir, "deep.xml", test::nestedDocument(f.root, depth));
        QString error;
        QDomDocument doc;
        QCOMPARE(loadDocument(path, Loader{f, nullptr, LCD_LOG_SITE}, doc, error), accepted);
        if (!accepted) {
            // The offending element is the 257th start tag: "<root>" then 255 "<e>".
            const int column = 1 + int(qstrlen(f.root)) + 2 + 255 * 3;
            QCOMPARE(error,
                     QStringLiteral("Parse error at line 1, column %1:\nelement nesting is deeper than 256 "
                                    "levels; the file is rejected")
                         .arg(column));
        }
    }

    // The byte scanner must agree with a real XML reader on every construct
    // that can hide or fake a tag.
    void nestingScannerAgreesWithReader_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::newRow("plain") << QByteArray("<a><b><c/></b><b></b></a>");
        QTest::newRow("declaration and PI") << QByteArray("<?xml version=\"1.0\"?><a><?pi <b><c>?><b/></a>");
        QTest::newRow("comment with tags") << QByteArray("<a><!-- <b><c><d> --><b/></a>");
        QTest::newRow("CDATA with tags") << QByteArray("<a><![CDATA[<b><c><d>]]><b/></a>");
        QTest::newRow("attribute with > and /")
            << QByteArray("<a x=\"1>2/\" y='/>'><b z=\"&lt;c&gt;/\"/></a>");
        QTest::newRow("self-closing with blank") << QByteArray("<a><b /><b/><b></b></a>");
        QTest::newRow("doctype with subset")
            << QByteArray("<!DOCTYPE a [<!ELEMENT a ANY><!ENTITY e \"<b>\">]><a><b/></a>");
        QTest::newRow("utf-8 text") << QByteArray("<a><b>\xe4\xb8\xad\xe6\x96\x87</b></a>");
        QTest::newRow("multi-line tags") << QByteArray("<a\n  x=\"1\"\n><b\n/></a>");
    }

    void nestingScannerAgreesWithReader() {
        QFETCH(QByteArray, xml);
        const int depth = streamDepth(xml);
        QVERIFY(checkNesting(xml, depth, nullptr));
        QVERIFY(!checkNesting(xml, depth - 1, nullptr));
    }

    void violationPosition() {
        NestingViolation where;
        QVERIFY(!checkNesting("<a>\n  <b>\n\xe4\xb8\xad<c/></b></a>", 2, &where));
        QCOMPARE(where.line, 3);
        QCOMPARE(where.column, 2); // one character (three bytes) before "<c/>"
    }

    void utf16DocumentsAreMeasuredToo() {
        const QString text = QStringLiteral("<LCD>") + QString("<e>").repeated(300) +
                             QString("</e>").repeated(300) + QStringLiteral("</LCD>");
        QByteArray utf16("\xFF\xFE", 2);
        utf16.append(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        QVERIFY(!checkNesting(utf16, kMaxDocumentDepth, nullptr));
    }

    void nestingCheckIsCheap() {
        // A realistic large file: the check must cost a small fraction of the parse.
        QByteArray xml = "<Vrn><Device>";
        for (int i = 0; i < 20000; ++i)
            xml += "<Item Support=\"1\" Editable=\"1\" Value=\"" + QByteArray::number(i) +
                   "\" Min=\"0\" Max=\"255\"><Enum Value=\"1\"/><Enum Value=\"2\"/></Item>\n";
        xml += "</Device></Vrn>";
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 10; ++i)
            QVERIFY(checkNesting(xml, kMaxDocumentDepth, nullptr));
        const qint64 scan = timer.nsecsElapsed() / 10;
        timer.restart();
        QDomDocument doc;
        QVERIFY(doc.setContent(xml, true));
        const qint64 parse = timer.nsecsElapsed();
        qInfo("nesting check %.2f ms, DOM parse %.2f ms (%.1f%%)", scan / 1e6, parse / 1e6,
              100.0 * scan / parse);
        QVERIFY2(scan * 5 < parse, "the nesting check costs more than a fifth of the parse");
    }

    void directoryPrologue() {
        QTemporaryDir dir;
        const Loader loader{kDeviceFile, nullptr, LCD_LOG_SITE};
        QString error;
        QVERIFY(!prepareDirectory(QString(), loader, error));
        QCOMPARE(error, QStringLiteral("Invalid file path!\n"));

        const QString created = dir.filePath("a/b/c");
        error.clear();
        QVERIFY(prepareDirectory(created, loader, error));
        QVERIFY(QFileInfo(created).isDir());
        QVERIFY(error.isEmpty());

        const QString file = test::writeFile(dir, "plain.xml", "<Vrn/>");
        QVERIFY(!prepareDirectory(file, loader, error));
        QCOMPARE(error, QStringLiteral("Invalid file path!\n%1").arg(file));
    }
};

QTEST_GUILESS_MAIN(DocumentTest)
#include "tst_document.moc"
