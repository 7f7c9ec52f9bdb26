// lcdcfg report, rendered in a real browser: headless Chromium lays the page
// out, a probe appended to a copy measures every drawn cell against its
// picture and its template, and the page itself must log nothing to the
// console. The shipped tree draws clean; each planted layout fault is marked.

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

#include "testutil.h"

namespace {

const char kSplice[] = "device/29974/29974_screen_splice.xml";

using test::Run;

// The browser run with a home of its own under `home`.
Run browse(const QString& browser, const QStringList& args, const QString& home) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), home);
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
    env.insert(QStringLiteral("XDG_CACHE_HOME"), home + QStringLiteral("/.cache"));
    return test::run(browser, args, env);
}

// Headless Chromium: $LCD_BROWSER, else the first of Debian's packages found.
QString browser() {
    const QString chosen = qEnvironmentVariable("LCD_BROWSER");
    if (!chosen.isEmpty()) return chosen;
    for (const char* name : {"chromium-headless-shell", "chromium", "chromium-browser"}) {
        const QString path = QStandardPaths::findExecutable(QLatin1String(name));
        if (!path.isEmpty()) return path;
    }
    return QString();
}

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// How many times `pattern` occurs in the screen files of the tree.
int countInScreenFiles(const QString& root, const QString& pattern) {
    int count = 0;
    const QRegularExpression re(pattern);
    for (const QString& name : QDir(root + QStringLiteral("/device/29974")).entryList({"*screen*.xml"}))
        count += int(QString::fromUtf8(readAll(root + "/device/29974/" + name)).count(re));
    return count;
}

// A 1920 x 1080 cell element as the shipped splice file writes it.
QString cell(int x, int y, int row, int column, int slot, int connector) {
    return QString::asprintf(
        "<Cell X=\"%d\" Y=\"%d\" Width=\"1920\" Height=\"1080\" Row=\"%d\" Column=\"%d\" "
        "SlotIndex=\"%d\" ConnectorIndex=\"%d\"/>",
        x, y, row, column, slot, connector);
}

} // namespace

class ReportTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        m_browser = browser();
        if (m_browser.isEmpty())
            QFAIL("no headless Chromium found (chromium-headless-shell or chromium; or set LCD_BROWSER): "
                  "`make test` installs Debian's chromium-headless-shell");
    }

    // One row per planted fault; "shipped" plants none.
    void drawsEveryCellAndMarksEveryFault_data() {
        QTest::addColumn<QString>("from");
        QTest::addColumn<QString>("to");
        QTest::addColumn<QString>("fault");
        QTest::newRow("shipped") << QString() << QString() << QString();
        // the first layouts of the 2x2 template: screens 1-3 on output slots 5-7
        QTest::newRow("overlapping cell")
            << cell(1920, 0, 1, 2, 5, 2) << cell(960, 0, 1, 2, 5, 2) << "overlap";
        QTest::newRow("cell fed from an input slot")
            << cell(0, 1080, 2, 1, 6, 3) << cell(0, 1080, 2, 1, 2, 3) << "slot";
        QTest::newRow("connector beyond the card's")
            << cell(1920, 1080, 2, 2, 7, 4) << cell(1920, 1080, 2, 2, 7, 7) << "connector";
    }

    void drawsEveryCellAndMarksEveryFault() {
        QFETCH(QString, from);
        QFETCH(QString, to);
        QFETCH(QString, fault);
        QTemporaryDir dir;
        QString root = test::sharedConfig(QString());
        if (!fault.isEmpty()) {
            root = test::shippedCopy(dir);
            const QString path = root + QLatin1Char('/') + QLatin1String(kSplice);
            QString xml = QString::fromUtf8(readAll(path));
            QVERIFY2(xml.contains(from), "the planted fault's original text is not in the shipped file");
            test::writeFile(dir, QStringLiteral("config/") + kSplice, xml.replace(from, to).toUtf8());
        }
        const QString page = dir.filePath(QStringLiteral("report.html"));
        const Run report = test::lcdcfg({"report", root, "-o", page});
        QVERIFY2(report.code == (fault.isEmpty() ? 0 : 1), qPrintable(report.out + report.err));
        const QByteArray html = readAll(page);
        if (fault.isEmpty()) { // names and labels in the other language
            const Run chinese = test::lcdcfg({"report", root, "--locale", "zh_CN", "-o", "-"});
            QVERIFY(chinese.out.contains("lang=\"zh-CN\"") && chinese.out.contains(">机箱</h3>") &&
                    chinese.out.contains("2x2 拼接") && chinese.out.contains("4U液晶拼接处理器"));
        }

        // self-contained: no script, no external resource, every link inside the page
        QVERIFY(!html.contains("<script") && !html.contains("<link") && !html.contains("src=") &&
                !html.contains("url("));
        QVERIFY(!QString::fromUtf8(html).contains(QRegularExpression(QStringLiteral("href=\"[^#]"))));

        // the page with a probe appended: what the browser laid out, and not one console message
        // (the page has no script, the probe logs nothing)
        const QString home = dir.filePath(QStringLiteral("home"));
        const QStringList common{"--headless",
                                 "--disable-gpu",
                                 "--no-sandbox",
                                 "--hide-scrollbars",
                                 "--window-size=1400,1800",
                                 "--user-data-dir=" + dir.filePath(QStringLiteral("profile"))};
        QByteArray probed = html;
        probed.replace("</body>", "<script>" + test::testData(QStringLiteral("lcdcfg/report-probe.js")) +
                                      "</script></body>");
        const QString probePage = test::writeFile(dir, QStringLiteral("probed.html"), probed);
        const Run dumped = browse(m_browser,
                                  common + QStringList{"--enable-logging=stderr", "--v=0", "--dump-dom",
                                                       QUrl::fromLocalFile(probePage).toString()},
                                  home);
        for (const QString& line : dumped.err.split('\n'))
            QVERIFY2(!line.contains(":CONSOLE") && !line.contains("Uncaught"), qPrintable(line));
        QVERIFY2(dumped.code == 0, qPrintable(dumped.err));
        const QRegularExpressionMatch m =
            QRegularExpression(QStringLiteral("<pre id=\"probe\">(.*)</pre>")).match(dumped.out);
        QVERIFY2(m.hasMatch(), "the probe left no result");
        QString json = m.captured(1);
        json.replace("&lt;", "<").replace("&gt;", ">").replace("&amp;", "&");
        const QJsonObject r = QJsonDocument::fromJson(json.toUtf8()).object();

        // every template of both screen files, with every cell, inside its picture and to scale
        QCOMPARE(r["templates"].toInt(), countInScreenFiles(root, "<Templete>"));
        QCOMPARE(r["layouts"].toInt(), countInScreenFiles(root, "<Layout Rows"));
        QCOMPARE(r["cells"].toInt(), countInScreenFiles(root, "<Cell "));
        QVERIFY2(r["bad"].toArray().isEmpty(), QJsonDocument(r["bad"].toArray()).toJson());

        const QJsonArray faults = r["faults"].toArray();
        if (fault.isEmpty()) {
            QVERIFY2(faults.isEmpty(), QJsonDocument(faults).toJson());
            // the page itself, photographed (LCD_UPDATE_SCREENSHOT=1 keeps it as docs/report.png)
            const QString shot = dir.filePath(QStringLiteral("report.png"));
            const Run shown = browse(
                m_browser, common + QStringList{"--screenshot=" + shot, QUrl::fromLocalFile(page).toString()},
                home);
            QVERIFY2(QFileInfo(shot).size() > 10000, qPrintable(shown.err));
            if (qEnvironmentVariableIntValue("LCD_UPDATE_SCREENSHOT")) {
                QFile::remove(QStringLiteral(LCD_SOURCE_DIR "/docs/report.png"));
                QVERIFY(QFile::copy(shot, QStringLiteral(LCD_SOURCE_DIR "/docs/report.png")));
            }
            return;
        }
        // the planted fault is marked in a colour no sound cell has, and listed with a link to its cell
        bool marked = false;
        for (const QJsonValue& f : faults) {
            if (!f["codes"].toArray().contains(fault)) continue;
            QVERIFY2(!r["okFills"].toArray().contains(f["fill"]), qPrintable(f["fill"].toString()));
            marked = true;
        }
        QVERIFY2(marked, QJsonDocument(faults).toJson());
        bool linked = false;
        for (const QJsonValue& l : r["links"].toArray())
            linked = linked || (l["code"] == "layout-" + fault && l["target"] == "g" &&
                                l["codes"].toArray().contains(fault));
        QVERIFY2(linked, QJsonDocument(r["links"].toArray()).toJson());
    }

private:
    QString m_browser;
};

QTEST_GUILESS_MAIN(ReportTest)
#include "tst_lcdcfg_report.moc"
