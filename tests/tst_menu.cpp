#include <QtCore/QTranslator>

#include "common/document.h"
#include "testutil.h"
#include "ui/menuconfig.h"

using namespace LCD::ConfigModel;

namespace {

// A subtree as "key:order=icon{child,...}" (no "=icon" without a function
// item); a child whose parent link is wrong is marked "!".
QString render(const s_MenuItem* node) {
    QStringList children;
    for (const s_MenuItem* c : node->children)
        children << (c->parent == node ? "" : "!") + render(c);
    QString self = QString("%1:%2").arg(node->key).arg(node->order);
    if (node->fcItem) self += "=" + node->fcItem->icon;
    return children.isEmpty() ? self : self + "{" + children.join(",") + "}";
}

// Function items as "key|icon|type|unit|en/zh_CN" ("-" without names), in reading order.
QString render(const QList<s_MenuFCItem*>& items) {
    QStringList out;
    for (const s_MenuFCItem* i : items)
        out << QStringList{QString::number(i->key), i->icon, QString::number(i->type), i->unit,
                           i->name.isEmpty() ? "-" : i->name.value("en") + "/" + i->name.value("zh_CN")}
                   .join("|");
    return out.join("; ");
}

QString keys(const QList<s_MenuItem*>& items) {
    QStringList out;
    for (const s_MenuItem* i : items)
        out << QString("%1:%2").arg(i->key).arg(i->order);
    return out.join(",");
}

// Translates every text into a marker, so a text that must stay untranslated shows.
class MarkingTranslator : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char*, const char*, const char*, int) const override { return "translated"; }
};

} // namespace

class tst_Menu : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    int m_files = 0;
    // A file holding `body` inside <LCD><wrapper>, or `body` alone without a wrapper or when it is a
    // document.
    QString write(const QByteArray& body, const QByteArray& wrapper = "MenuBar") {
        const QByteArray doc = wrapper.isEmpty() || body.startsWith("<LCD")
                                   ? body
                                   : "<LCD><" + wrapper + ">" + body + "</" + wrapper + "></LCD>";
        return test::writeFile(m_dir, QString("%1.xml").arg(++m_files), doc);
    }

private Q_SLOTS:
    void loadFailures_data() {
        QTest::addColumn<bool>("functionItems");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("expected");
        const QString absent = m_dir.filePath("absent.xml");
        const struct {
            const char* name;
            QString path, expected;
        } cases[] = {
            {"empty path", "", "Invalid file path!\n"},
            {"missing file", absent, "Fail to open file [" + absent + "]!"},
            // Qt 6's parser translates its own text through the application's translators.
            {"not well-formed", write("<LCD><MenuBar></LCD>", ""),
             test::byQt("Parse error at line 1, column 20:\ntag mismatch",
                        "Parse error at line 1, column 20:\ntranslated")},
            {"root differs in case", write("<lcd/>", ""),
             "The file is not a valid configuration file for device."},
        };
        for (bool fc : {false, true})
            for (const auto& c : cases)
                QTest::addRow("%s: %s", fc ? "function items" : "tree", c.name) << fc << c.path << c.expected;
    }
    // The menu family's texts are used as written, never translated; a failure reads nothing.
    void loadFailures() {
        QFETCH(bool, functionItems);
        QFETCH(QString, path);
        QFETCH(QString, expected);
        MarkingTranslator translator;
        QCoreApplication::installTranslator(&translator);
        MenuConfigManager menu;
        QString error = "earlier failure";
        QVERIFY(!(functionItems ? menu.readMenuFCItems(path, error) : menu.readMenuItems(path, error)));
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(error, expected);
        QCOMPARE(render(menu.rootMenuItem()) + render(menu.menuFCItems()), QString("0:0"));
    }

    void reading_data() {
        QTest::addColumn<QByteArray>("functionItems");
        QTest::addColumn<QByteArray>("tree");
        QTest::addColumn<QString>("reads"); // f: function items, t: tree
        QTest::addColumn<QString>("expectedItems");
        QTest::addColumn<QString>("expectedTree");
        const auto row = [](const char* name, const QByteArray& fc, const QByteArray& tree, const char* reads,
                            const char* items, const char* root) {
            QTest::newRow(name) << fc << tree << QString(reads) << QString(items) << QString(root);
        };
        row("every function-item field", R"(<MenuItem Key="106" Icon=":/b" Type="3" Unit="%"><Name>
            <en>Bright</en><zh_CN>亮度</zh_CN></Name></MenuItem>)",
            {}, "f", "106|:/b|3|%|Bright/亮度", "0:0");
        row("missing Type and Key give 0, no Name no texts",
            R"(<MenuItem Icon=":/x"/><MenuItem Key="a" Type="-1"/>)", {}, "f", "0|:/x|0||-; 0||-1||-", "0:0");
        row("any tag after the first MenuItem",
            R"(<Head Key="9"/><MenuItem Key="1"/><Line Key="2"/><MenuItem/>)", {}, "f",
            "1||0||-; 2||0||-; 0||0||-", "0:0");
        row("first text of a language, a missing one empty",
            R"(<MenuItem Key="4"><Name><zh_CN>输入</zh_CN><zh_CN>x</zh_CN></Name></MenuItem>)", {}, "f",
            "4||0||/输入", "0:0");
        row("only the first MenuItems", R"(<LCD><MenuItems><MenuItem Key="1"/></MenuItems><MenuItems>
            <MenuItem Key="2"/></MenuItems></LCD>)",
            {}, "f", "1||0||-", "0:0");
        row("no MenuItems adds nothing", R"(<LCD><MenuItem Key="1"/></LCD>)", {}, "f", "", "0:0");
        row("first element of any name is the root, missing Order is 0", {},
            R"(<Menu Key="5" Order="3"><A Key="10" Order="1"/><B Key="x"/></Menu><Next Key="9"/>)", "t", "",
            "5:3{10:1,0:0}");
        row("levels in document order", {},
            R"(<M Key="1"><M Key="2"><M Key="3"/><M Key="4"/></M><M Key="5"/></M>)", "t", "",
            "1:0{2:0{3:0,4:0},5:0}");
        row("empty MenuBar", {}, {}, "t", "", "0:0");
        row("missing MenuBar", {}, R"(<LCD><M Key="5"/></LCD>)", "t", "", "0:0");
        const QByteArray fc = R"(<MenuItem Key="1" Icon="one"/><MenuItem Key="2" Icon="first"/>
                                 <MenuItem Key="2" Icon="second"/>)";
        const QByteArray tree = R"(<M Key="1"><M Key="2"/><M Key="3"/></M>)";
        const char* const items = "1|one|0||-; 2|first|0||-; 2|second|0||-";
        row("function items read first are linked, the first of a key", fc, tree, "ft", items,
            "1:0=one{2:0=first,3:0}");
        row("function items read after the tree are not linked", fc, tree, "tf", items, "1:0{2:0,3:0}");
        row("reading twice duplicates", R"(<MenuItem Key="1" Icon="one"/>)", tree, "ftft",
            "1|one|0||-; 1|one|0||-", "1:0=one{2:0,3:0,2:0,3:0}");
    }
    void reading() {
        QFETCH(QByteArray, functionItems);
        QFETCH(QByteArray, tree);
        QFETCH(QString, reads);
        MenuConfigManager menu;
        QString error;
        for (QChar read : reads)
            QVERIFY(read == 'f' ? menu.readMenuFCItems(write(functionItems, "MenuItems"), error)
                                : menu.readMenuItems(write(tree), error));
        QCOMPARE(error, QString());
        QTEST(render(menu.menuFCItems()), "expectedItems");
        QTEST(render(menu.rootMenuItem()), "expectedTree");
    }

    void queries_data() {
        QTest::addColumn<QString>("query");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("other");
        QTest::addColumn<QString>("expected");
        // Order tells nodes with the same key apart.
        QTest::newRow("root is tested first") << "find" << 5 << 0 << "5:1";
        QTest::newRow("shallower node wins over earlier one") << "find" << 30 << 0 << "30:2";
        QTest::newRow("earlier node wins at equal depth") << "find" << 20 << 0 << "20:1";
        QTest::newRow("missing node") << "find" << 99 << 0 << "";
        QTest::newRow("root key gives the root's children") << "children" << 5 << 0 << "10:1,11:2,30:2,50:0";
        QTest::newRow("last hit wins, a hit ends its own level") << "children" << 20 << 0 << "41:0,42:0";
        QTest::newRow("no search below a hit") << "children" << 50 << 0 << "50:1";
        QTest::newRow("missing key has no children") << "children" << 99 << 0 << "";
        QTest::newRow("siblings") << "sibling" << 10 << 11 << "true";
        QTest::newRow("a key is its own sibling") << "sibling" << 10 << 10 << "true";
        QTest::newRow("the root has no parent") << "sibling" << 5 << 10 << "false";
        QTest::newRow("a grandchild is no sibling") << "sibling" << 10 << 40 << "false";
        QTest::newRow("missing key") << "sibling" << 99 << 10 << "false";
        QTest::newRow("parent looked up again by its key") << "sibling" << 40 << 41 << "true";
    }
    void queries() {
        QFETCH(QString, query);
        QFETCH(int, key);
        QFETCH(int, other);
        MenuConfigManager menu;
        QString error;
        QVERIFY(menu.readMenuItems(write(R"(<M Key="5" Order="1">
            <M Key="10" Order="1"><M Key="30" Order="1"/><M Key="20" Order="1"><M Key="40"/></M></M>
            <M Key="11" Order="2"><M Key="20" Order="2"><M Key="41"/><M Key="42"/></M>
                                  <M Key="20" Order="3"><M Key="43"/></M></M>
            <M Key="30" Order="2"/>
            <M Key="50"><M Key="50" Order="1"><M Key="51"/></M></M></M>)"),
                                   error));
        if (query == "find") {
            s_MenuItem* found = menu.findMenuItem(key);
            QTEST(found ? keys({found}) : QString(), "expected");
        } else if (query == "children") {
            QTEST(keys(menu.findChidItemsByKey(key)), "expected");
            QCOMPARE(menu.findChidItemSizeByKey(key), menu.findChidItemsByKey(key).size());
        } else {
            QTEST(QString(menu.isSiblingItem(key, other) ? "true" : "false"), "expected");
        }
    }

    void nesting_data() {
        QTest::addColumn<int>("depth"); // element levels, "LCD" and "MenuBar" included
        QTest::addColumn<bool>("accepted");
        QTest::newRow("at the loader's limit read completely") << kMaxDocumentDepth << true;
        QTest::newRow("100,000 levels rejected") << 100000 << false;
    }
    void nesting() {
        QFETCH(int, depth);
        QFETCH(bool, accepted);
        const int items = depth - 2;
        QByteArray doc;
        for (int key = 1; key <= items; ++key)
            doc += "<M Key=\"" + QByteArray::number(key) + "\">";
        doc += QByteArray("</M>").repeated(items);
        MenuConfigManager menu;
        QString error;
        QCOMPARE(menu.readMenuItems(write(doc), error), accepted);
        if (!accepted) {
            QVERIFY2(error.startsWith("Parse error at line 1, column ") &&
                         error.endsWith("element nesting is deeper than 256 levels; the file is rejected"),
                     qPrintable(error));
            QCOMPARE(render(menu.rootMenuItem()), QString("0:0"));
            return;
        }
        int levels = 1;
        for (const s_MenuItem* n = menu.rootMenuItem(); n->children.size() == 1; n = n->children.first())
            QCOMPARE(n->children.first()->key, ++levels);
        QCOMPARE(levels, items);
        QCOMPARE(keys(menu.findChidItemsByKey(items - 1)), QString("%1:0").arg(items));
        QVERIFY(menu.isSiblingItem(items, items));
    }
};

QTEST_GUILESS_MAIN(tst_Menu)
#include "tst_menu.moc"
