// lcdcfg lint, explain, reference and schema, run as an author runs them: one
// planted fault per lint rule (which its file's schema fails at the same line),
// explain answers against golden files, and the format reference and the
// schemas regenerated and compared with docs/reference/ and share/schema/.

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

#include "testutil.h"

namespace {

using test::lcdcfg;
using test::Run;

// 1-based line of the first occurrence of `marker` in `text`.
int lineOf(const QByteArray& text, const QByteArray& marker) {
    const int at = text.indexOf(marker);
    return at < 0 ? -1 : text.left(at).count('\n') + 1;
}

const QString kSchemas = QStringLiteral(LCD_SOURCE_DIR "/share/schema");

// The associations of share/schema/associations.json, each as
// {"pattern", "systemId"}.
QJsonArray associations() {
    QFile json(kSchemas + "/associations.json");
    if (!json.open(QIODevice::ReadOnly)) qFatal("no associations.json");
    return QJsonDocument::fromJson(json.readAll()).array();
}

// The same, as docs/editors.md tells an author to set them: its JSON block
// with "xml.fileAssociations", the installed directory taken off each systemId.
QJsonArray documentedAssociations() {
    QFile doc(LCD_SOURCE_DIR "/docs/editors.md");
    if (!doc.open(QIODevice::ReadOnly)) qFatal("no docs/editors.md");
    const QByteArray text = doc.readAll();
    const int at = text.indexOf("\"xml.fileAssociations\"");
    const int from = text.lastIndexOf("```json", at) + 7;
    QJsonArray list;
    for (const QJsonValue a : QJsonDocument::fromJson(text.mid(from, text.indexOf("```", at) - from))
                                  .object()["xml.fileAssociations"]
                                  .toArray())
        list.append(
            QJsonObject{{"pattern", a["pattern"]}, {"systemId", a["systemId"].toString().section('/', -1)}});
    return list;
}

// The schema associations.json gives `file` (relative to the root) by the
// first pattern that matches it, as its catalog name; empty when none.
QString schemaOf(const QString& file) {
    for (const QJsonValue& a : associations()) {
        QString pattern = QRegularExpression::escape(a["pattern"].toString());
        pattern.replace("\\*\\*\\/", "(.*/)?").replace("\\*", "[^/]*");
        if (QRegularExpression("^" + pattern + "$").match("/" + file).hasMatch())
            return "urn:lcdconfigmodel:schema:" + a["systemId"].toString().chopped(4);
    }
    return QString();
}

// xmllint's verdict on `path` against `schema`, found through the catalog.
Run validate(const QString& path, const QString& schema) {
    QProcess xmllint;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XML_CATALOG_FILES", kSchemas + "/catalog.xml");
    xmllint.setProcessEnvironment(env);
    xmllint.start("xmllint", {"--noout", "--schema", schema, path});
    if (!xmllint.waitForFinished(60000)) qFatal("xmllint did not finish");
    return {xmllint.exitCode(), QString::fromUtf8(xmllint.readAllStandardOutput()),
            QString::fromUtf8(xmllint.readAllStandardError())};
}

} // namespace

class LcdcfgLintTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // One row per rule: `from` replaced by `to` in `file` of a copy of the
    // shipped tree (all occurrences; an empty `from` writes a new file), and
    // the one warning expected on the line holding `at`, where the file's
    // schema fails it too. The first row is the shipped tree itself, which
    // lints clean and satisfies the schemas.
    void lintReportsPlantedFaults_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QByteArray>("at");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("text");
        const QString slot = "device/29974/29974_slot.xml";
        QTest::newRow("shipped tree") << slot << QByteArray() << QByteArray() << QByteArray() << ""
                                      << "";
        QTest::newRow("parse") << slot << QByteArray("</Vrn>") << QByteArray("") << QByteArray() << "parse"
                               << "Parse error";
        QTest::newRow("root") << "func/hdr/lcdhdrinputconfig.xml" << QByteArray("Kalmir")
                              << QByteArray("Kalmar") << QByteArray("<Kalmar") << "root"
                              << "root <Kalmar> is refused";
        QTest::newRow("version") << "ui/checklist.xml" << QByteArray("version=\"1.0\">")
                                 << QByteArray("version=\"2.0\">") << QByteArray("<LCD") << "version"
                                 << "version=\"2.0\": only \"1.0\" is accepted";
        QTest::newRow("file-unread") << "device/29974/29974_notes.xml" << QByteArray()
                                     << QByteArray("<Vrn version=\"1.0\"><Device/></Vrn>\n")
                                     << QByteArray("<Vrn") << "file-unread"
                                     << "no reader walks this file";
        QTest::newRow("unread-element")
            << "subcard/1001_maincontrol.xml" << QByteArray("<Sections/>") << QByteArray("<Sectons/>")
            << QByteArray("<Sectons") << "unread-element"
            << "no reader reads <Sectons> in <Subcard>; did you mean <Sections>?";
        QTest::newRow("duplicate-element")
            << "device/29974/29974_feature.xml" << QByteArray("<HDR ") << QByteArray("<HDR/>\n<HDR ")
            << QByteArray("<HDR Support") << "duplicate-element"
            << "only the first <HDR> in <Device> is read";
        QTest::newRow("ignored-element")
            << "subcard/2101_hdmi20_4in.xml" << QByteArray("<Types>")
            << QByteArray("<Typs Value=\"1\"/><Types>") << QByteArray("<Typs") << "ignored-element"
            << "<Typs> is reached but nothing in it is read";
        QTest::newRow("unread-attribute")
            << slot << QByteArray("<CrossCard Support") << QByteArray("<CrossCard Suport")
            << QByteArray("<CrossCard") << "unread-attribute"
            << "no reader reads Suport of <CrossCard>; did you mean Support?";
        QTest::newRow("number-invalid") << slot << QByteArray("Index=\"6\"") << QByteArray("Index=\"six\"")
                                        << QByteArray("\"six\"") << "number-invalid"
                                        << "Index=\"six\" of <Slot> is not a decimal number (stored as 0)";
        QTest::newRow("boolean-number")
            << slot << QByteArray("<CrossCard Support=\"1\"") << QByteArray("<CrossCard Support=\"true\"")
            << QByteArray("<CrossCard") << "boolean-number"
            << "Support=\"true\" of <CrossCard> is not a number: write 1 or 0";
        QTest::newRow("hex-number") << slot << QByteArray("ModuleId=\"2101\"")
                                    << QByteArray("ModuleId=\"0x835\"") << QByteArray("0x835") << "hex-number"
                                    << "write 2101 (stored as 0)";
        QTest::newRow("hex-number in a text")
            << "func/hdr/lcdhdroutputconfig.xml"
            << QByteArray("AUTO -->\n        <ValueInfo Type=\"0\"> <!-- bit depth -->\n            "
                          "<SupportValue>255<")
            << QByteArray("AUTO -->\n        <ValueInfo Type=\"0\"> <!-- bit depth -->\n            "
                          "<SupportValue>0xFF<")
            << QByteArray("0xFF") << "hex-number"
            << "the text \"0xFF\" of <SupportValue> is hexadecimal; numbers are decimal: write 255";
        QTest::newRow("number-overflow")
            << slot << QByteArray("Index=\"5\"") << QByteArray("Index=\"99999999999\"")
            << QByteArray("99999999999") << "number-overflow"
            << "is outside -2147483648 to 2147483647";
        QTest::newRow("unread-text") << slot << QByteArray("<Slot Index=\"10\"/>")
                                     << QByteArray("<Slot Index=\"10\">ten</Slot>") << QByteArray("ten")
                                     << "unread-text"
                                     << "the text \"ten\" of <Slot> is not read; its attributes are (Index)";
        QTest::newRow("attribute-for-text")
            << "subcard/1001_maincontrol.xml" << QByteArray("<en>Main control card</en>")
            << QByteArray("<en value=\"Main control card\"/>") << QByteArray("<en ") << "attribute-for-text"
            << "<en> is read for its text, which is empty; value=\"Main control card\" is not read";
    }

    void lintReportsPlantedFaults() {
        QFETCH(QString, file);
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QByteArray, at);
        QFETCH(QString, code);
        QFETCH(QString, text);
        QTemporaryDir dir;
        const QString root = test::shippedCopy(dir);
        QByteArray content = to;
        if (!from.isEmpty()) {
            QFile original(root + "/" + file);
            QVERIFY(original.open(QIODevice::ReadOnly));
            content = original.readAll();
            QVERIFY2(content.contains(from), from.constData());
            content.replace(from, to);
        }
        if (!code.isEmpty()) test::writeFile(dir, "config/" + file, content);

        const Run run = lcdcfg({"lint", "--json", root});
        const QJsonArray problems = QJsonDocument::fromJson(run.out.toUtf8()).object()["problems"].toArray();
        if (code.isEmpty()) {
            QVERIFY2(run.code == 0 && problems.isEmpty(), qPrintable(run.out + run.err));
            QCOMPARE(documentedAssociations(), associations()); // what an author sets is what we test
            QDirIterator it(root, QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext()) { // every file satisfies its schema
                const QString f = QDir(root).relativeFilePath(it.next());
                const Run valid = validate(it.filePath(), schemaOf(f));
                QVERIFY2(!schemaOf(f).isEmpty() && valid.code == 0, qPrintable(f + ": " + valid.err));
            }
            return;
        }
        QVERIFY2(run.code == 1 && problems.size() == 1, qPrintable(run.out + run.err));
        const QJsonObject p = problems.first().toObject();
        QCOMPARE(p["file"].toString(), file);
        QCOMPARE(p["code"].toString(), code);
        QVERIFY2(p["text"].toString().contains(text), qPrintable(p["text"].toString()));
        if (!at.isEmpty()) QCOMPARE(p["line"].toInt(), lineOf(content, at));
        // the file's schema fails it at the same line (no pattern names an unread file)
        const QString schema = schemaOf(file);
        QVERIFY(schema.isEmpty() == (code == "file-unread"));
        if (schema.isEmpty()) return;
        const Run valid = validate(root + "/" + file, schema);
        QVERIFY2(valid.code != 0, qPrintable(valid.err));
        if (!at.isEmpty())
            QVERIFY2(valid.err.contains(QStringLiteral(":%1: ").arg(p["line"].toInt())),
                     qPrintable(valid.err));

        if (code == "hex-number") // the same tree with the rule ignored is clean
            QCOMPARE(lcdcfg({"lint", "--ignore", code, root}).code, 0);
    }

    // Each answer against its golden file tests/data/lcdcfg/NAME: explain
    // on the shipped tree, lint --json on a small tree of planted faults
    // (tests/data/lcdcfg/lint-tree).
    void answersMatchGoldens_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        const QString shipped = test::sharedConfig(QString());
        QTest::newRow("explain-slot.txt")
            << QStringList{"explain", "--root", shipped, "slot", "29974", "9"} << 0;
        QTest::newRow("explain-card.txt") << QStringList{"explain", "--root", shipped, "card", "2103"} << 0;
        QTest::newRow("explain-connector.txt")
            << QStringList{"explain", "--root", shipped, "connector", "13", "2", "0"} << 0;
        QTest::newRow("explain-feature.txt")
            << QStringList{"explain", "--root", shipped, "feature", "29974", "features.genlock.type"} << 0;
        QTest::newRow("explain-template.txt")
            << QStringList{"explain", "--root", shipped, "template", "29974", "2", "1"} << 0;
        QTest::newRow("lint.json") << QStringList{"lint", "--json",
                                                  QStringLiteral(LCD_SOURCE_DIR
                                                                 "/tests/data/lcdcfg/lint-tree")}
                                   << 1;
    }

    void answersMatchGoldens() {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        const Run run = lcdcfg(args);
        QVERIFY2(run.code == exitCode, qPrintable(run.out + run.err));
        test::compareGolden(QString::fromLatin1(QTest::currentDataTag()), run.out.toUtf8());
    }

    // docs/reference/ and share/schema/ are what `lcdcfg reference` and
    // `lcdcfg schema` write from the shipped tree and the samples under
    // tests/data/reference/; LCD_UPDATE_GOLDEN=1 rewrites them.
    void referenceMatchesTheReaders_data() {
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QString>("docs");
        QTest::newRow("reference") << "reference" << QStringLiteral(LCD_SOURCE_DIR "/docs/reference");
        QTest::newRow("schema") << "schema" << kSchemas;
    }
    void referenceMatchesTheReaders() {
        QFETCH(QString, verb);
        QFETCH(QString, docs);
        QTemporaryDir dir;
        const bool update = qEnvironmentVariableIsSet("LCD_UPDATE_GOLDEN");
        const Run run = lcdcfg({verb, "--output", update ? docs : dir.path(), test::sharedConfig(QString()),
                                QStringLiteral(LCD_SOURCE_DIR "/tests/data/reference")});
        QVERIFY2(run.code == 0, qPrintable(run.out + run.err));
        if (update) return;
        QProcess diff;
        diff.start("diff", {"-ru", docs, dir.path()});
        diff.waitForFinished();
        QVERIFY2(diff.exitCode() == 0, qPrintable(docs +
                                                  " differs from the readers (LCD_UPDATE_GOLDEN=1 "
                                                  "rewrites it):\n" +
                                                  QString::fromUtf8(diff.readAllStandardOutput())));
    }
};

QTEST_GUILESS_MAIN(LcdcfgLintTest)
#include "tst_lcdcfg_lint.moc"
