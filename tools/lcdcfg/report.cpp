// lcdcfg report: the page that draws a configuration tree (see report.h).

#include "tools/lcdcfg/report.h"

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QXmlStreamWriter>

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <utility>

#include "tools/lcdcfg/check.h"
#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/layout.h"
#include "tools/lcdcfg/report_page.h"
#include "tools/lcdcfg/session.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace page {

const char* const kLabels[kLabelCount][2] = {
    {"Configuration report", "配置报告"},
    {"Model", "型号"},
    {"Chassis", "机箱"},
    {"Slot", "槽位"},
    {"accepts", "可插"},
    {"placed", "已插"},
    {"Cards", "板卡"},
    {"Card", "板卡"},
    {"Name", "名称"},
    {"Card mode", "板卡模式"},
    {"Connectors", "接口"},
    {"Screen type", "屏幕类型"},
    {"Device mode", "设备模式"},
    {"Template", "模板"},
    {"Screen", "屏幕"},
    {"Layer types", "图层类型"},
    {"Layer type", "图层类型"},
    {"Max", "最大"},
    {"Valid", "有效"},
    {"Layer files", "图层文件"},
    {"Inversion", "反转"},
    {"Shadow", "阴影"},
    {"Cut and fill", "裁剪填充"},
    {"Connector types", "接口类型"},
    {"Capacity mode", "容量模式"},
    {"Input resolutions", "输入分辨率"},
    {"Output resolutions", "输出分辨率"},
    {"Menu", "菜单"},
    {"Problems", "问题"},
    {"Where", "位置"},
    {"Severity", "级别"},
    {"Code", "代码"},
    {"Text", "说明"},
    {"Picture", "图"},
    {"No problems.", "没有问题。"},
    {"Layout problems", "布局问题"},
    {"in", "入"},
    {"out", "出"},
    {"none", "无"},
    {"type", "类型"},
    {"frame", "画面"},
    {"cell", "单元"},
    {"did not load in full, its load stopped at", "未完整加载，加载停止于"},
};

namespace {

const char kStyle[] = R"(
body { font: 14px/1.4 system-ui, sans-serif; margin: 0 2em 3em; color: #1f2937; background: #fff; }
h1 { font-size: 1.6em; margin: .8em 0 .2em; }
h2 { font-size: 1.3em; border-bottom: 2px solid #1e3a8a; margin-top: 1.6em; }
h3 { font-size: 1.1em; margin: 1.2em 0 .4em; }
h4 { font-size: 1em; margin: 1em 0 .3em; color: #374151; }
nav a { margin-right: 1em; }
table { border-collapse: collapse; margin: .4em 0 1em; }
th, td { border: 1px solid #d1d5db; padding: 2px 8px; text-align: left; vertical-align: top; }
th { background: #f3f4f6; }
td.res { max-width: 60em; font-size: 12px; }
.templates { display: grid; gap: .8em; }
.template { border: 1px solid #d1d5db; border-radius: 6px; padding: .4em .8em; }
.template.faulty { border-color: #b91c1c; }
.layouts { display: flex; flex-wrap: wrap; gap: 1em 1.6em; align-items: flex-end; }
.scroll { overflow-x: auto; }
figure { margin: 0; }
figcaption { font-size: 12px; color: #4b5563; }
svg text { font-family: system-ui, sans-serif; }
svg .frame { fill: none; stroke: #6b7280; stroke-dasharray: 4 3; vector-effect: non-scaling-stroke; }
svg .cell rect { fill: #dbeafe; stroke: #1e40af; stroke-width: 1.5; vector-effect: non-scaling-stroke; }
svg .cell text { fill: #1e3a8a; text-anchor: middle; dominant-baseline: middle; }
svg .cell.fault rect { fill: #fca5a5; fill-opacity: .75; stroke: #b91c1c; stroke-width: 2.5; }
svg .cell.fault text { fill: #7f1d1d; font-weight: bold; }
ul.findings { color: #b91c1c; margin: .3em 0; }
.problem-error td.sev { color: #b91c1c; font-weight: bold; }
.problem-warning td.sev { color: #b45309; font-weight: bold; }
.menu ul { list-style: none; padding-left: 1.2em; border-left: 1px dotted #9ca3af; }
.menu .key { color: #6b7280; font-size: 12px; }
table.problems td a { white-space: nowrap; }
.muted { color: #6b7280; }
p.stopped { color: #b91c1c; font-weight: bold; }
)";

} // namespace

QString text(const std::string& s) {
    return QString::fromStdString(s);
}

// `s` cut to about `width` Latin letters (a CJK character counts two).
QString elide(const QString& s, int width) {
    int used = 0;
    for (int i = 0; i < s.size(); ++i) {
        used += s[i].unicode() >= 0x2E80 ? 2 : 1;
        if (used > width) return s.left(i) + QChar(0x2026);
    }
    return s;
}

QString number(double v) {
    return QString::number(v, 'g', 6);
}

// The chassis picture's measures: a slot's width, the gap between slots, the
// height of the group bands above them.

QString problemKey(const Problem& p) {
    return QStringLiteral("%1:%2:%3:%4:%5").arg(p.file).arg(p.line).arg(p.column).arg(p.code, p.text);
}

QString Page::connectorName(int type, bool shortName) const {
    const auto it = m_trace.connectorNames().constFind(type);
    if (it == m_trace.connectorNames().constEnd()) return QStringLiteral("%1 %2").arg(label(kType)).arg(type);
    const QString en = shortName ? it->shortEn : it->en;
    const QString zh = shortName ? it->shortZhCN : it->zhCN;
    const QString chosen = m_en ? en : zh;
    return chosen.isEmpty() ? (m_en ? zh : en) : chosen;
}

QString Page::cardName(int model) const {
    if (!m_tree.cards()) return QString();
    for (const Subcard::s_Subcard& card : m_tree.cards()->subcardConfig())
        if (card.modelId == model) return pick(card.name.en, card.name.zhCN);
    return QString();
}

void Page::placeCells() {
    int total = 0;
    if (m_tree.devices())
        for (const Devicecfg::s_Device& device : m_tree.devices()->DeviceConfigs())
            for (const Screen::s_VrnScreen& screen : device.screens)
                for (const Screen::s_DeviceMode& mode : screen.deviceModes)
                    for (const Screen::s_Templete& t : mode.templetes)
                        for (const Screen::s_Layout& l : t.layouts)
                            total += int(l.cells.size());
    m_placed = total == m_trace.cells().size();
}

QByteArray Page::write() {
    QByteArray html;
    QBuffer buffer(&html);
    buffer.open(QIODevice::WriteOnly);
    m_x.setDevice(&buffer);
    m_x.setAutoFormatting(true);
    m_x.setAutoFormattingIndent(1);
    m_x.writeDTD(QStringLiteral("<!DOCTYPE html>"));
    placeCells();

    // The body is written first (it adds the layout findings), then put after the head.
    QByteArray body;
    {
        QBuffer b(&body);
        b.open(QIODevice::WriteOnly);
        m_x.setDevice(&b);
        open("body");
        element("h1", label(kTitle));
        const QFileInfo root(m_tree.root()); // its last two folders: the page does not tell where it was made
        element("p", QFileInfo(root.path()).fileName() + QLatin1Char('/') + root.fileName(),
                {{"class", "muted"}});
        open("nav");
        if (m_tree.devices())
            for (int d = 0; d < m_tree.devices()->DeviceConfigs().size(); ++d)
                link(QStringLiteral("d%1").arg(d), QStringLiteral("%1 %2")
                                                       .arg(label(kModel))
                                                       .arg(m_tree.devices()->DeviceConfigs()[d].modelId));
        link(QStringLiteral("cards"), label(kCards));
        link(QStringLiteral("connectors"), label(kConnectorTypes));
        link(QStringLiteral("menu"), label(kMenu));
        link(QStringLiteral("problems"), label(kProblemList));
        close();
        stoppedLoads();
        if (m_tree.devices())
            for (int d = 0; d < m_tree.devices()->DeviceConfigs().size(); ++d)
                device(d, m_tree.devices()->DeviceConfigs()[d]);
        cards();
        connectors();
        menu();
        problemList();
        close(); // body
    }
    m_x.setDevice(&buffer);
    open("html", {{"lang", m_en ? QStringLiteral("en") : QStringLiteral("zh-CN")}});
    open("head");
    open("meta", {{"charset", QStringLiteral("utf-8")}});
    close();
    element("title", label(kTitle) + QStringLiteral(" - ") + QFileInfo(m_tree.root()).fileName());
    element("style", QString::fromLatin1(kStyle));
    close(); // head
    buffer.write("\n");
    buffer.write(body);
    buffer.write("\n</html>\n");
    return html;
}

// Every component whose load stopped at a file: the file and its problem.
void Page::stoppedLoads() {
    for (const PartLoad& load : m_tree.loads())
        if (const QString why = m_tree.failure(load.part); !why.isEmpty())
            element("p",
                    QStringLiteral("%1 %2 %3").arg(QLatin1String(partName(load.part)), label(kStopped), why),
                    {{"class", "stopped"}});
}

// ---- one device model ----------------------------------------------------------

void Page::device(int d, const Devicecfg::s_Device& device) {
    const QString id = QStringLiteral("d%1").arg(d);
    open("section", {{"id", id}});
    element("h2", QStringLiteral("%1 %2 - %3")
                      .arg(label(kModel))
                      .arg(device.modelId)
                      .arg(pick(device.feature.enName, device.feature.zhName)));
    // every file of the model's directory points here unless a finer picture claims it
    for (const QString& document :
         m_tree.loadOf(Part::Devices) ? m_tree.loadOf(Part::Devices)->documents : QStringList())
        if (QFileInfo(document).dir().dirName().section(QLatin1Char('.'), 0, 0) ==
            QString::number(device.modelId))
            m_fileAnchor.insert(m_tree.relative(document), id);
    chassis(id + QStringLiteral("-chassis"), device);
    const std::vector<Subcard::s_Subcard> none;
    const layout::Feeds feeds =
        layout::feedsOf(device.slot.slots, m_tree.cards() ? m_tree.cards()->subcardConfig() : none);
    for (int s = 0; s < device.screens.size(); ++s)
        screen(QStringLiteral("%1-s%2").arg(id).arg(s), device.screens[s], feeds);
    layers(device);
    close();
}

// The slots of a chassis side by side in slot order, each with what it

// ---- the catalogues --------------------------------------------------------------

void Page::cards() {
    open("section", {{"id", "cards"}});
    element("h2", label(kCards));
    open("table");
    open("tr");
    for (Label l : {kCard, kName, kCardMode, kConnectors})
        element("th", label(l));
    close();
    if (m_tree.cards())
        for (const Subcard::s_Subcard& card : m_tree.cards()->subcardConfig()) {
            open("tr", {{"id", QStringLiteral("card-%1").arg(card.modelId)}});
            element("td", QString::number(card.modelId));
            element("td", pick(card.name.en, card.name.zhCN));
            element("td", QString::number(card.cardMode));
            QStringList connectors;
            for (const Subcard::s_Connector& c : card.connectors.connectors)
                connectors << QStringLiteral("%1: %2 (%3) %4")
                                  .arg(c.position)
                                  .arg(connectorName(c.type, false))
                                  .arg(c.type)
                                  .arg(c.interfaceType == 2   ? label(kInput)
                                       : c.interfaceType == 1 ? label(kOutput)
                                                              : QString());
            element("td", connectors.isEmpty() ? label(kNone) : connectors.join(QStringLiteral("; ")));
            close();
        }
    close();
    close();
    const QHash<QString, int> documents = m_trace.cardDocuments();
    for (auto it = documents.cbegin(); it != documents.cend(); ++it)
        m_fileAnchor.insert(m_tree.relative(it.key()), QStringLiteral("card-%1").arg(it.value()));
}

void Page::connectors() {
    open("section", {{"id", "connectors"}});
    element("h2", label(kConnectorTypes));
    const ConnectorConfigInterface* catalogue = m_tree.connectors();
    QList<int> types;
    if (catalogue)
        for (int type = 0; type < 256; ++type)
            if (catalogue->findEDIDInfo(type) || m_trace.connectorNames().contains(type)) types << type;
    for (int type : types) {
        const QString id = QStringLiteral("ct-%1").arg(type);
        element("h3", QStringLiteral("%1 (%2 %3)").arg(connectorName(type, false), label(kType)).arg(type),
                {{"id", id}});
        QList<int> modes{0, 1, 2};
        if (const auto* listed = catalogue->findResoluCapacityMode(type))
            for (const Connector::s_CapacityModeInInterface& m : *listed)
                if (!modes.contains(m.value)) modes << m.value;
        open("table", {{"class", "resolutions"}, {"data-connector-type", QString::number(type)}});
        open("tr");
        for (Label l : {kCapacityMode, kInputs, kOutputs})
            element("th", label(l));
        close();
        for (int mode : modes) {
            QStringList cells;
            for (int interfaceType : {2, 1}) {
                QStringList list;
                for (const Connector::s_resolutionResolutionRatio& r :
                     catalogue->findConnectorStandardResolution(mode, type, interfaceType))
                    list << QStringLiteral("%1\u00d7%2%3%4")
                                .arg(r.width)
                                .arg(r.height)
                                .arg(r.interlaced == 1 ? QStringLiteral("i") : QStringLiteral("@"))
                                .arg(number(r.refreshRate * double(r.coefficient)));
                cells << list.join(QStringLiteral("  "));
            }
            if (cells[0].isEmpty() && cells[1].isEmpty()) continue;
            open("tr");
            element("td", QString::number(mode));
            element("td", cells[0].isEmpty() ? QStringLiteral("-") : cells[0], {{"class", "res"}});
            element("td", cells[1].isEmpty() ? QStringLiteral("-") : cells[1], {{"class", "res"}});
            close();
        }
        close();
    }
    close();
    const QHash<QString, int> documents = m_trace.connectorDocuments();
    for (auto it = documents.cbegin(); it != documents.cend(); ++it)
        m_fileAnchor.insert(m_tree.relative(it.key()), QStringLiteral("ct-%1").arg(it.value()));
}

void Page::menu() {
    open("section", {{"id", "menu"}, {"class", "menu"}});
    element("h2", label(kMenu));
    if (m_tree.menu()) {
        open("ul");
        menuItem(m_tree.menu()->rootMenuItem(), 0);
        close();
    }
    close();
}

void Page::menuItem(const s_MenuItem* item, int depth) {
    open("li");
    const QString name = item->fcItem
                             ? item->fcItem->name.value(m_en ? QStringLiteral("en") : QStringLiteral("zh_CN"))
                             : QString();
    m_x.writeCharacters(name.isEmpty() ? QStringLiteral("?") : name);
    element("span", QStringLiteral(" %1").arg(item->key), {{"class", "key"}});
    if (!item->children.isEmpty() && depth < 64) {
        open("ul");
        for (const s_MenuItem* child : item->children)
            menuItem(child, depth + 1);
        close();
    }
    close();
}

// ---- problems --------------------------------------------------------------------

QString Page::anchorOf(const Problem& p) const {
    const auto exact = m_anchorOf.constFind(problemKey(p));
    if (exact != m_anchorOf.constEnd()) return *exact;
    const auto file = m_fileAnchor.constFind(p.file);
    if (file != m_fileAnchor.constEnd()) return *file;
    if (p.file.startsWith(QLatin1String("connector/"))) return QStringLiteral("connectors");
    if (p.file.startsWith(QLatin1String("subcard/"))) return QStringLiteral("cards");
    if (p.file.startsWith(QLatin1String("menu/"))) return QStringLiteral("menu");
    if (p.file.startsWith(QLatin1String("device/")) && m_tree.devices() &&
        !m_tree.devices()->DeviceConfigs().isEmpty())
        return QStringLiteral("d0");
    return QString();
}

void Page::problemList() {
    m_problems.sort();
    open("section", {{"id", "problems"}});
    element("h2", QStringLiteral("%1 (%2)").arg(label(kProblemList)).arg(m_problems.list().size()));
    if (m_problems.list().isEmpty()) {
        element("p", label(kNoProblems));
        close();
        return;
    }
    open("table", {{"class", "problems"}});
    open("tr");
    for (Label l : {kWhere, kSeverity, kCode, kText, kPicture})
        element("th", label(l));
    close();
    for (const Problem& p : m_problems.list()) {
        const bool error = p.severity == Severity::Error;
        open("tr", {{"class", error ? QStringLiteral("problem-error") : QStringLiteral("problem-warning")},
                    {"data-code", p.code}});
        element("td", p.file.isEmpty() ? QStringLiteral("-")
                                       : QStringLiteral("%1:%2:%3").arg(p.file).arg(p.line).arg(p.column));
        element("td", severityName(p.severity), {{"class", "sev"}});
        element("td", p.code);
        element("td", p.text);
        const QString anchor = anchorOf(p);
        open("td");
        if (anchor.isEmpty())
            m_x.writeCharacters(QStringLiteral("-"));
        else
            link(anchor, anchor);
        close();
        close();
    }
    close();
    close();
}

} // namespace page

using page::Page;

QByteArray writeReport(const Tree& tree, const Trace& trace, Problems& problems, bool english) {
    return Page(tree, trace, problems, english).write();
}

int runReport(const QStringList& args) {
    CommandLine cl(QStringLiteral("report"),
                   QStringLiteral("Writes one self-contained HTML page that draws a configuration tree: the "
                                  "chassis, every screen template's layouts, the layer types, the connector "
                                  "types, the menu and the problems found."),
                   QStringLiteral("[ROOT]"));
    const QCommandLineOption outputOption({QStringLiteral("o"), QStringLiteral("output")},
                                          QStringLiteral("The HTML file to write (- for standard output)."),
                                          QStringLiteral("file"));
    cl.addOption(outputOption);
    Session session(cl, Session::RootPositional, Session::NoJson);
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    if (!cl.isSet(outputOption)) return cl.usage(QStringLiteral("-o FILE.html is required"));
    const bool english = qApp->property("lcd_locale").toString() == QLatin1String("en");
    Trace trace; // one load, for the drawing and for check's problems
    const std::unique_ptr<Tree> loaded = session.load(&trace);
    if (!loaded) return kUsage;
    Tree& tree = *loaded;
    Problems checked;
    checkTree(tree, trace, checked);
    Problems problems; // the page lists the layout findings itself, at their cells
    for (const Problem& p : checked.list())
        if (!p.code.startsWith(QLatin1String("layout-"))) problems.add(p);
    const QByteArray html = writeReport(tree, trace, problems, english);

    const QString output = cl.value(outputOption);
    QFile file(output);
    const bool opened = output == QLatin1String("-") ? file.open(stdout, QIODevice::WriteOnly)
                                                     : file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    if (!opened || file.write(html) != html.size()) {
        err() << "lcdcfg report: cannot write " << output << ": " << file.errorString() << "\n";
        return kUsage;
    }
    file.close();
    if (output != QLatin1String("-")) out() << output << ": " << problems.summary() << "\n";
    return problems.count(Severity::Error) ? kProblems : kClean;
}

} // namespace lcdcfg