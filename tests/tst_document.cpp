// The one document loader: each family's texts, the version rule, the
// structural limits checked before the parse (nesting, elements, attributes,
// namespace declarations, bytes), and the prologue every directory loader
// shares.

#include <QtCore/QXmlStreamReader>

#include "catalogue/connectorconfig.h"
#include "catalogue/subcardconfig.h"
#include "common/document.h"
#include "device/deviceconfig.h"
#include "testutil.h"

#include <functional>

#include <fcntl.h>
#include <unistd.h>

using namespace LCD::ConfigModel;
using DirectoryLoader = std::function<bool(const QString&, QString&)>;
Q_DECLARE_METATYPE(DirectoryLoader)

namespace {

const DocumentFamily* familyNamed(const QString& name) {
    if (name == "device") return &kDeviceFile;
    if (name == "menu") return &kMenuFile;
    if (name == "hdr") return &kHdrFile;
    return &kUiFile;
}

} // namespace

class DocumentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void familyTexts_data() {
        QTest::addColumn<QString>("family");
        QTest::addColumn<QString>("file"); // empty: empty path; "-": a missing file
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("expected"); // %1: the path; empty: success
        const auto row = [](const char* name, const char* family, const char* file, const QByteArray& content,
                            const QString& expected) {
            QTest::newRow(name) << family << file << content << expected;
        };
        const QString deviceRoot = "The file is not a valid configuration file for device.";
        const QString deviceVersion = "The file is not a valid configuration file of version 1.0 for device.";
        const QString uiRoot = "This file is not a valid configuration file.";
        row("device: empty path", "device", "", {}, "Invalid file path!\n");
        row("device: missing file", "device", "-", {}, "Fail to open file [%1]!");
        row("device: empty file fails at parse", "device", "a.xml", {},
            test::byQt("Parse error at line 1, column 1:\nunexpected end of file",
                       "Parse error at line 1, column 0:\nPremature end of document."));
        row("device: root differs in case", "device", "a.xml", "<vrn/>", deviceRoot);
        row("device: version 1.0 with blank", "device", "a.xml", "<Vrn version=\"1.0 \"/>", deviceVersion);
        row("device: version 1.00", "device", "a.xml", "<Vrn version=\"1.00\"/>", deviceVersion);
        row("device: no version accepted", "device", "a.xml", "<Vrn><Device/></Vrn>", "");
        row("device: version 1.0 accepted", "device", "a.xml", "<Vrn version=\"1.0\"/>", "");
        row("menu: empty path", "menu", "", {}, "Invalid file path!\n");
        row("menu: wrong root", "menu", "a.xml", "<Vrn/>", deviceRoot);
        row("menu: version", "menu", "a.xml", "<LCD version=\"2.0\"/>", deviceVersion);
        row("ui: empty path has no placeholder", "ui", "", {}, "Invalid file path!");
        row("ui: missing file", "ui", "-", {}, "Fail to open file [%1]!");
        row("ui: root differs in case", "ui", "a.xml", "<lcd/>", uiRoot);
        row("ui: version 1.0 with blank", "ui", "a.xml", "<LCD version=\" 1.0\"/>",
            "This file is not a valid configuration file of version 1.0 .");
        row("ui: accepted", "ui", "a.xml", "<LCD version=\"1.0\"><LcdKeys/></LCD>", "");
        row("hdr: root is Kalmir", "hdr", "a.xml", "<LCD/>", uiRoot);
        row("hdr: missing file", "hdr", "-", {}, "Fail to open file [%1]!");
        row("hdr: accepted", "hdr", "a.xml", "<Kalmir/>", "");
    }
    void familyTexts() {
        QFETCH(QString, family);
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        QFETCH(QString, expected);
        QTemporaryDir dir;
        QString path = file == "-" ? dir.filePath("missing.xml") : QString();
        if (file.size() > 1) path = test::writeFile(dir, file, content);

        QString error = "earlier text";
        QDomDocument doc;
        test::MessageRecorder recorder;
        QCOMPARE(loadDocument(path, Loader{*familyNamed(family), nullptr, LCD_LOG_SITE}, doc, error),
                 expected.isEmpty());
        // Untouched on success, overwritten on failure.
        QCOMPARE(error, expected.isEmpty() ? "earlier text" : QString(expected).replace("%1", path));

        // Only the UI families trace a failed open, in the loader's context.
        const bool traced = file == "-" && (family == "ui" || family == "hdr");
        QCOMPARE(recorder.debugs(),
                 traced ? QStringList{"open file: " + path + "  error code: 5"} : QStringList{});
        for (const test::Message& m : recorder.messages())
            QVERIFY(m.category == "default" && m.file.endsWith("tst_document.cpp"));
    }

    // The device family passes its texts through the loader class's
    // translation context; the UI family uses them as written.
    void deviceTextsAreTranslated() {
        struct Upper : QTranslator {
            QString translate(const char* context, const char* source, const char*, int) const override {
                return QLatin1String(context) == "Ctx" ? QString::fromUtf8(source).toUpper() : QString();
            }
        } upper;
        QCoreApplication::installTranslator(&upper);
        QString device, ui;
        QDomDocument doc;
        QVERIFY(!loadDocument({}, Loader{kDeviceFile, "Ctx", LCD_LOG_SITE}, doc, device));
        QVERIFY(!loadDocument({}, Loader{kUiFile, "Ctx", LCD_LOG_SITE}, doc, ui));
        const QString node = Loader{kDeviceFile, "Ctx", LCD_LOG_SITE}.invalidNode("HDR");
        QCoreApplication::removeTranslator(&upper);
        QCOMPARE(QStringList({device, node, ui}),
                 QStringList({"INVALID FILE PATH!\n", "INVALID [HDR] NODE.", "Invalid file path!"}));
    }

    void deepDocumentsAreRejected_data() {
        QTest::addColumn<QString>("family");
        QTest::addColumn<int>("depth");
        // Row names built without a printf format: GCC 12 at -O3 takes the
        // family pointer for a possible null and warns (-Wformat-overflow).
        for (const QByteArray family : {"device", "menu", "ui", "hdr"})
            for (int depth : {100000, kMaxDocumentDepth + 1, kMaxDocumentDepth})
                QTest::newRow((family + ": " + QByteArray::number(depth) + " levels").constData())
                    << QString::fromLatin1(family) << depth;
    }
    void deepDocumentsAreRejected() {
        QFETCH(QString, family);
        QFETCH(int, depth);
        const DocumentFamily& f = *familyNamed(family);
        QTemporaryDir dir;
        const QString path = test::writeFile(dir, "deep.xml", test::nestedDocument(f.root, depth));
        QString error;
        QDomDocument doc;
        QCOMPARE(loadDocument(path, Loader{f, nullptr, LCD_LOG_SITE}, doc, error),
                 depth <= kMaxDocumentDepth);
        // The offending element is the 257th start tag: "<root>" then 255 "<e>".
        if (depth > kMaxDocumentDepth)
            QCOMPARE(error,
                     QStringLiteral("Parse error at line 1, column %1:\nelement nesting is deeper than "
                                    "256 levels; the file is rejected")
                         .arg(1 + int(qstrlen(f.root)) + 2 + 255 * 3));
    }

    // The scan before the parse counts what a real XML reader reads, on every
    // construct that can hide or fake a tag or an attribute.
    void scanAgreesWithReader_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::newRow("plain") << QByteArray("<a><b><c/></b><b></b></a>");
        QTest::newRow("declaration and PI") << QByteArray("<?xml version=\"1.0\"?><a><?pi <b><c>?><b/></a>");
        QTest::newRow("comment with tags") << QByteArray("<a><!-- <b><c><d> --><b/></a>");
        QTest::newRow("CDATA with tags") << QByteArray("<a><![CDATA[<b><c><d>]]><b/></a>");
        QTest::newRow("attribute with > and /")
            << QByteArray("<a x=\"1>2/\" y='/>'><b z=\"&lt;c&gt;/\"/></a>");
        QTest::newRow("self-closing with blank") << QByteArray("<a><b /><b/><b></b></a>");
        QTest::newRow("doctype subset with a quote in a comment")
            << QByteArray("<!DOCTYPE a [<!ELEMENT a ANY><!-- ' <b x=\"1\"><c> -->]><a><b/></a>");
        QTest::newRow("doctype with element declarations")
            << QByteArray("<!DOCTYPE a [<!ELEMENT a (b)*><?p '?>]><a z=\"2\"><b/></a>");
        QTest::newRow("UTF-7 markup")
            << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-7\"?><a>+ADw-b c=+ACI-1+ACI-/+AD4-</a>");
        QTest::newRow("utf-8 text") << QByteArray("<a><b>\xe4\xb8\xad\xe6\x96\x87</b></a>");
        QTest::newRow("multi-line tags") << QByteArray("<a\n  x=\"1\"\n><b\n  y = 'z' w=\"v\"/></a>");
        QTest::newRow("namespace declarations and prefixes") << QByteArray(
            "<a xmlns=\"urn:a\" xmlns:p=\"urn:p\" xmlnsx=\"1\"><p:b xmlns:q=\"urn:q\" p:c=\"1\"/><p:d/></a>");
        const QString text = "<a x=\"1\" xmlns:p=\"urn:p\"><b y=\"2\"/><b/></a>";
        QByteArray utf16("\xFF\xFE", 2);
        utf16.append(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        QTest::newRow("UTF-16") << utf16;
        QTest::newRow("UTF-16 without byte-order mark") << utf16.mid(2);
    }
    void scanAgreesWithReader() {
        QFETCH(QByteArray, xml);
        DocumentShape read; // as Qt's stream reader counts
        QXmlStreamReader reader(xml);
        for (int depth = 0; !reader.atEnd();) {
            const auto token = reader.readNext();
            if (token == QXmlStreamReader::EndElement) --depth;
            if (token != QXmlStreamReader::StartElement) continue;
            read.depth = qMax(read.depth, ++depth);
            ++read.elements;
            const int declarations = reader.namespaceDeclarations().size();
            read.attributes = qMax(read.attributes, reader.attributes().size() + declarations);
            read.namespaceDeclarations += declarations;
            read.prefixedNames += reader.qualifiedName().contains(':');
            for (const QXmlStreamAttribute& a : reader.attributes())
                read.prefixedNames += a.qualifiedName().contains(':');
            for (const QXmlStreamNamespaceDeclaration& d : reader.namespaceDeclarations())
                read.prefixedNames += !d.prefix().isEmpty();
        }
        QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
        DocumentShape scanned;
        QVERIFY(checkLimits(xml, DocumentLimits(), nullptr, &scanned));
        QCOMPARE(QVector<int>({scanned.depth, scanned.elements, scanned.attributes,
                               scanned.namespaceDeclarations, scanned.prefixedNames}),
                 QVector<int>({read.depth, read.elements, read.attributes, read.namespaceDeclarations,
                               read.prefixedNames}));
        // Each limit holds at the count and fails one below it.
        const DocumentLimits at{read.depth, read.elements, read.attributes, read.namespaceDeclarations};
        QVERIFY(checkLimits(xml, at, nullptr));
        for (int limit = 0; limit < 4; ++limit) {
            DocumentLimits below = at;
            int* counts[] = {&below.depth, &below.elements, &below.attributes, &below.namespaceDeclarations};
            if (*counts[limit] == 0) continue;
            --*counts[limit];
            QVERIFY2(!checkLimits(xml, below, nullptr), qPrintable(QString::number(limit)));
        }
    }

    void violationPosition() {
        LimitViolation where;
        QVERIFY(!checkLimits("<a>\n  <b>\n\xe4\xb8\xad<c/></b></a>", DocumentLimits{2, 100, 10, 10}, &where));
        QCOMPARE(where.line, 3);
        QCOMPARE(where.column, 2); // one character (three bytes) before "<c/>"
    }

    // Whatever a description file goes past, the load ends at once in the
    // parse-error form, with the position of the offending start tag and a
    // text naming the limit; documents the byte scan cannot vouch for alone
    // also go through the stream reader.
    void hostileDocumentsAreRejected_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("error");
        const QString deep = "element nesting is deeper than 256 levels; the file is rejected";
        const QString open = QString("<e>").repeated(300), close = QString("</e>").repeated(300);
        const QString text = "<LCD>" + open + close + "</LCD>";
        QByteArray utf16("\xFF\xFE", 2);
        utf16.append(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        const auto at = [](int line, int column, const QString& reason) {
            return QStringLiteral("Parse error at line %1, column %2:\n%3").arg(line).arg(column).arg(reason);
        };
        QTest::newRow("UTF-16 nesting") << utf16 << at(1, 1 + 5 + 255 * 3, deep);
        QTest::newRow("quote in a DOCTYPE comment")
            << ("<!DOCTYPE Vrn [<!--'-->]><Vrn>" + open + close + "</Vrn><!--']>-->").toUtf8()
            << at(1, 26 + 5 + 255 * 3, deep);
        QTest::newRow("UTF-7 markup") << ("<?xml version=\"1.0\" encoding=\"UTF-7\"?><Vrn>" +
                                          QString("+ADw-e+AD4-").repeated(300) + close + "</Vrn>")
                                             .toUtf8()
                                      << at(1, 39 + 5 + 255 * 3, deep);
        QTest::newRow("entity carrying markup")
            << QByteArray("<!DOCTYPE Vrn [<!ENTITY e \"<i><i></i></i>\">]><Vrn>&e;</Vrn>")
            << at(1, 45, "entity declarations are not accepted in description files");

        QTest::newRow("attributes declared with defaults")
            << QByteArray("<!DOCTYPE Vrn [<!ELEMENT Vrn ANY>\n<!ATTLIST Vrn x CDATA \"1\">]><Vrn/>")
            << at(2, 1, "attribute-list declarations are not accepted in description files");
        QByteArray attributes = "<Vrn>\n <Device";
        for (int i = 0; i <= kMaxElementAttributes; ++i)
            attributes += " a" + QByteArray::number(i) + "=\"1\"";
        QTest::newRow("too many attributes")
            << attributes + "/></Vrn>"
            << at(2, 2,
                  QString("element has more than %1 attributes; the file is rejected")
                      .arg(kMaxElementAttributes));
        const QString wide = "<LCD>" + QString::fromUtf8(attributes.mid(5)) + "/></LCD>";
        QByteArray wide16("\xFF\xFE", 2);
        wide16.append(reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2);
        QTest::newRow("too many attributes, UTF-16")
            << wide16
            << at(2, 2,
                  QString("element has more than %1 attributes; the file is rejected")
                      .arg(kMaxElementAttributes));
        QByteArray declarations = "<Vrn>";
        for (int i = 0; i <= kMaxNamespaceDeclarations; ++i)
            declarations += "<p:A xmlns:p=\"urn:" + QByteArray::number(i) + "\"/>";
        QTest::newRow("too many namespace declarations")
            << declarations + "</Vrn>"
            << at(1, declarations.lastIndexOf('<') + 1,
                  QString("the file has more than %1 namespace declarations; the file is rejected")
                      .arg(kMaxNamespaceDeclarations));
        QTest::newRow("too many elements")
            << "<Vrn>\n" + QByteArray("<e/>").repeated(kMaxDocumentElements) + "</Vrn>"
            << at(2, 1 + 4 * (kMaxDocumentElements - 1),
                  QString("the file has more than %1 elements; the file is rejected")
                      .arg(kMaxDocumentElements));
        QTest::newRow("too many bytes")
            << "<Vrn>" + QByteArray(int(kMaxDocumentSize), ' ') + "</Vrn>"
            << at(0, 0, "the file is larger than 4 MiB; description files are read up to that size");
    }

    void hostileDocumentsAreRejected() {
        QFETCH(QByteArray, xml);
        QFETCH(QString, error);
        QDomDocument doc;
        QString text;
        QVERIFY(!parseDocumentData(xml, Loader{kDeviceFile, nullptr, LCD_LOG_SITE}, doc, text));
        QCOMPARE(text, error);
    }

    // An empty path fails, a missing directory is created with its parents, a
    // file is no directory; every directory loader starts this way.
    void directoryPrologue_data() {
        QTest::addColumn<DirectoryLoader>("load");
        const Loader loader{kDeviceFile, nullptr, LCD_LOG_SITE};
        QTest::newRow("prepareDirectory") << DirectoryLoader(
            [=](const QString& path, QString& error) { return prepareDirectory(path, loader, error); });
        QTest::newRow("connector catalogue") << DirectoryLoader([](const QString& path, QString& error) {
            return ConnectorConfigManager().readConfig(path, error);
        });
        QTest::newRow("card catalogue") << DirectoryLoader([](const QString& path, QString& error) {
            return SubcardConfigManager().readConfig(path, error);
        });
        QTest::newRow("device registry") << DirectoryLoader([](const QString& path, QString& error) {
            return DeviceTessanConfigManager().readConfig(path, error);
        });
    }
    void directoryPrologue() {
        QFETCH(DirectoryLoader, load);
        QTemporaryDir dir;
        QString error = "before";
        QVERIFY(!load(QString(), error));
        QCOMPARE(error, QStringLiteral("Invalid file path!\n"));

        const QString created = dir.filePath("a/b/c");
        error = "before";
        QVERIFY(load(created, error) && QFileInfo(created).isDir());
        QCOMPARE(error, QStringLiteral("before"));

        const QString file = test::writeFile(dir, "plain.xml", "<Vrn/>");
        QVERIFY(!load(file, error));
        QCOMPARE(error, "Invalid file path!\n" + file);

        // A name holding U+FFFD stands for bytes a listing could not decode:
        // no folder is created under it.
        const QString mangled = dir.filePath(QStringLiteral("m") + QChar(QChar::ReplacementCharacter));
        QVERIFY(!load(mangled, error));
        QCOMPARE(error, "Invalid file path!\n" + mangled);
        QVERIFY(QDir(dir.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot) == QStringList({"a"}));

        // A description file whose name cannot be decoded fails with its path.
        if (QByteArray(QTest::currentDataTag()) == "prepareDirectory") return;
        const bool registry = QByteArray(QTest::currentDataTag()) == "device registry";
        const QString folder = dir.filePath(registry ? "list/29974" : "list");
        QDir().mkpath(folder);
        const QByteArray raw = QFile::encodeName(folder + "/x").append("\xff.xml");
        const int fd = ::open(raw.constData(), O_CREAT | O_WRONLY, 0644);
        QVERIFY(fd >= 0);
        ::close(fd);
        error.clear();
        const bool ok = load(dir.filePath("list"), error);
        ::unlink(raw.constData()); // QTemporaryDir removes by decoded names
        QCOMPARE(ok, registry);
        QCOMPARE(error, QStringLiteral("Fail to open file [%1]!")
                            .arg(folder + "/x" + QChar(QChar::ReplacementCharacter) + ".xml"));
    }

    // What the parser makes of a file's bytes, one row per trap: what Qt 6's
    // parser does differently (docs/api.md, "Qt 6") and how Qt 5's decodes
    // them, which the loader may do for it only where the text comes out the
    // same, which documents it may parse without namespace processing, and
    // whichever documents the loader read before. Qt 5's result, then Qt 6's.
    // A result is the parse error, or "ok" with the root's attribute a and
    // text, percent-encoded, where its first child element ends its start tag
    // and its namespace, the root's attribute count when above one, and the
    // entity references kept.
    void qtParserDifferences_data() {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("qt5");
        QTest::addColumn<QString>("qt6");
        const auto error = [](int line, int column, const char* text) {
            return QStringLiteral("Parse error at line %1, column %2:\n%3").arg(line).arg(column).arg(text);
        };
        const auto row = [](const char* name, const QByteArray& xml, const QString& qt5, const QString& qt6) {
            QTest::newRow(name) << xml << qt5 << qt6;
        };
        row("texts: mismatched end tag", "<Vrn><A></Vrn>", error(1, 14, "tag mismatch"),
            error(1, 14, "Opening and ending tag mismatch."));
        row("texts and positions: early end", "<Vrn><A>", error(1, 9, "unexpected end of file"),
            error(1, 8, "Premature end of document."));
        row("texts and positions: content after the root", "<Vrn/><B/>", error(1, 8, "unexpected character"),
            error(1, 10, "Extra content at end of document."));
        row("refused: repeated attribute", "<Vrn a=\"1\" a=\"2\"/>",
            "ok a=2 text=", error(1, 18, "Attribute 'a' redefined."));
        row("namespaces: a declared prefix", "<Vrn xmlns:p=\"urn:p\" p:a=\"2\"><p:A/></Vrn>",
            "ok a=2 text= child=1:34 ns=urn:p", "ok a=2 text= child=1:35 ns=urn:p");
        row("namespaces: the default namespace", "<Vrn xmlns=\"urn:v\" b=\"1\"><A/></Vrn>",
            "ok a= text= child=1:28 ns=urn:v", "ok a= text= child=1:29 ns=urn:v");
        row("refused: undeclared prefix", "<Vrn><x:A/></Vrn>", "ok a= text= child=1:10",
            error(1, 11, "Namespace prefix 'x' not declared"));
        row("refused: undeclared entity", "<Vrn>&foo;</Vrn>", "ok a= text= entity=foo",
            error(1, 10, "Entity 'foo' not declared."));
        row("refused: undeclared entity in an attribute", "<Vrn><A b=\"&foo;\"/></Vrn>",
            "ok a= text= child=1:18", error(1, 16, "Entity 'foo' not declared."));
        row("skipped: parameter entity of an external subset", "<!DOCTYPE Vrn SYSTEM \"x.dtd\" [%pe;]><Vrn/>",
            "ok a= text=", "ok a= text=");
        row("refused: reference to a control character", "<Vrn a=\"&#1;\"/>",
            "ok a=%01 text=", error(1, 12, "Invalid character reference."));
        row("refused: control character", "<Vrn a=\"\x01\"/>",
            "ok a=%01 text=", error(1, 9, "Unexpected ''."));
        row("refused: malformed UTF-8", "<Vrn a=\"\xff\"/>",
            "ok a=%EF%BF%BD text=", error(1, 2, "Encountered incorrectly encoded content."));
        row("normalised: blanks in an attribute value", "<Vrn a=\"x\ty\nz\r\nw\"/>",
            "ok a=x%09y%0Az%0D%0Aw text=", "ok a=x%20y%20z%20w text=");
        row("normalised: line ends in text", "<Vrn>a\r\nb</Vrn>", "ok a= text=a%0D%0Ab", "ok a= text=a%0Ab");
        row("refused: XML version 2.0", "<?xml version=\"2.0\"?><Vrn/>",
            "ok a= text=", error(1, 21, "Unsupported XML version."));
        row("positions: an element's column", "<Vrn>\n  <A b=\"1\"/></Vrn>", "ok a= text= child=2:11",
            "ok a= text= child=2:12");
        // Qt 5 decodes a kilobyte at a time: an invalid sequence across a
        // boundary, and U+FEFF that begins one, come out otherwise than in one pass.
        const auto comment = [](int bytes) { return "<Vrn><!--" + QByteArray(bytes - 12, 'x') + "-->"; };
        row("decoding: U+FEFF at a kilobyte", comment(1024) + "\xEF\xBB\xBF<A/></Vrn>",
            "ok a= text= child=1:1027", "ok a= text=%EF%BB%BF child=1:1029");
        row("decoding: invalid sequence across a kilobyte", comment(1022) + "\xE2\x82" + "A</Vrn>",
            "ok a= text=%EF%BF%BDA", error(1, 2, "Encountered incorrectly encoded content."));
        row("decoding: cut sequence at the end", "<Vrn/>\n\xE4\xB8", "ok a= text=", "ok a= text=");
        row("decoding: declared encoding, any case",
            "<?xml version=\"1.0\" encoding=\"Iso-8859-1\"?><Vrn a=\"\xC3\xA9\"/>",
            "ok a=%C3%83%C2%A9 text=", "ok a=%C3%83%C2%A9 text=");
        row("decoding: NUL and CR LF", QByteArray("<Vrn>") + '\0' + "\r\n\xE4\xB8\xAD<A/></Vrn>",
            "ok a= text=%00%0D%0A%E4%B8%AD child=2:4", error(1, 6, "Unexpected ''."));
    }
    void qtParserDifferences() {
        QFETCH(QByteArray, xml);
        QFETCH(QString, qt5);
        QFETCH(QString, qt6);
        QDomDocument doc;
        QString error;
        const auto encoded = [](const QString& text) {
            return QString::fromLatin1(text.toUtf8().toPercentEncoding());
        };
        // Read by a loader that has just failed on a document with a prefix
        // declared: nothing of that document may show in this one.
        const Loader loader{kDeviceFile, nullptr, LCD_LOG_SITE};
        QVERIFY(!parseDocumentData("<Vrn xmlns:x=\"urn:stale\"><x:A>", loader, doc, error));
        QString result;
        if (parseDocumentData(xml, loader, doc, error)) {
            const QDomElement root = doc.documentElement();
            result = "ok a=" + encoded(root.attribute("a")) + " text=" + encoded(root.text());
            const QDomElement child = root.firstChildElement();
            if (!child.isNull())
                result += QStringLiteral(" child=%1:%2").arg(child.lineNumber()).arg(child.columnNumber());
            if (!child.namespaceURI().isEmpty()) result += " ns=" + child.namespaceURI();
            if (root.attributes().count() > 1)
                result += QStringLiteral(" attributes=%1").arg(root.attributes().count());
            for (const QDomNode& parent : {QDomNode(doc), QDomNode(root)}) {
                for (QDomNode n = parent.firstChild(); !n.isNull(); n = n.nextSibling()) {
                    if (n.isEntityReference()) result += " entity=" + n.nodeName();
                }
            }
        } else {
            result = error;
        }
        QCOMPARE(result, test::byQt(qt5, qt6));
    }
};

QTEST_GUILESS_MAIN(DocumentTest)
#include "tst_document.moc"
