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
#include "tools/lcdcfg/session.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

namespace {

// ---- the page's own words, in both languages ----------------------------------

enum Label {
    kTitle,
    kModel,
    kChassis,
    kSlot,
    kAccepts,
    kPlaced,
    kCards,
    kCard,
    kName,
    kCardMode,
    kConnectors,
    kScreenType,
    kDeviceMode,
    kTemplate,
    kScreen,
    kLayerTypes,
    kLayerType,
    kMax,
    kValid,
    kLayerFiles,
    kInversion,
    kShadow,
    kCutFill,
    kConnectorTypes,
    kCapacityMode,
    kInputs,
    kOutputs,
    kMenu,
    kProblemList,
    kWhere,
    kSeverity,
    kCode,
    kText,
    kPicture,
    kNoProblems,
    kFindings,
    kInput,
    kOutput,
    kNone,
    kType,
    kFrame,
    kCell,
    kLabelCount
};

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
};

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
)";

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

class Page {
public:
    Page(const Tree& tree, const Trace& trace, Problems& problems, bool english)
        : m_tree(tree), m_trace(trace), m_problems(problems), m_en(english) {}

    QByteArray write();

private:
    // ---- writing helpers --------------------------------------------------------
    using Attrs = std::initializer_list<std::pair<const char*, QString>>;
    void open(const char* tag, Attrs attrs = {}) {
        m_x.writeStartElement(QLatin1String(tag));
        for (const auto& a : attrs)
            m_x.writeAttribute(QLatin1String(a.first), a.second);
    }
    void close() { m_x.writeEndElement(); }
    // An element with text (always with an end tag: HTML has no empty elements of its own).
    void element(const char* tag, const QString& body, Attrs attrs = {}) {
        open(tag, attrs);
        m_x.writeCharacters(body);
        close();
    }
    void link(const QString& target, const QString& body) { element("a", body, {{"href", "#" + target}}); }
    QString label(Label l) const { return QString::fromUtf8(kLabels[l][m_en ? 0 : 1]); }
    QString pick(const std::string& en, const std::string& zh) const {
        const std::string& chosen = m_en ? en : zh;
        return text(chosen.empty() ? (m_en ? zh : en) : chosen);
    }
    QString connectorName(int type, bool shortName) const;
    QString cardName(int model) const;

    // ---- sections ---------------------------------------------------------------
    void placeCells();
    void device(int d, const Devicecfg::s_Device& device);
    void chassis(const QString& id, const Devicecfg::s_Device& device);
    void screen(const QString& id, const Screen::s_VrnScreen& screen, const layout::Feeds& feeds);
    void templete(const QString& id, const Screen::s_Templete& t, const layout::Feeds& feeds);
    void layoutPicture(const QString& id, const Screen::s_Layout& l, const QVector<layout::Finding>& findings,
                       double scale);
    void layers(const Devicecfg::s_Device& device);
    void cards();
    void connectors();
    void menu();
    void menuItem(const s_MenuItem* item, int depth);
    void problemList();
    QString anchorOf(const Problem& p) const;

    const Tree& m_tree;
    const Trace& m_trace;
    Problems& m_problems;
    bool m_en;
    QXmlStreamWriter m_x;
    int m_cell = 0;                       // cells drawn so far, to find their places
    bool m_placed = false;                // the observer saw exactly the cells of the records
    QHash<QString, QString> m_anchorOf;   // problem key -> anchor
    QHash<QString, QString> m_fileAnchor; // relative file -> anchor
};

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

void Page::chassis(const QString& id, const Devicecfg::s_Device& device) {
    struct Column {
        const layout::SlotGroup* group;
        const Slot::s_Slot* slot;
    };
    const QVector<layout::SlotGroup> groups = layout::slotGroups(device.slot.slots);
    QVector<Column> columns;
    for (const layout::SlotGroup& group : groups)
        for (const Slot::s_Slot& slot : group.attr->slots)
            columns.push_back({&group, &slot});
    std::stable_sort(columns.begin(), columns.end(),
                     [](const Column& a, const Column& b) { return a.slot->index < b.slot->index; });
    element("h3", label(kChassis), {{"id", id}});
    if (columns.isEmpty()) {
        element("p", label(kNone), {{"class", "muted"}});
        return;
    }
    const std::vector<Subcard::s_Subcard> none;
    const std::vector<Subcard::s_Subcard>& catalogue =
        m_tree.cards() ? m_tree.cards()->subcardConfig() : none;
    auto cardOf = [&](int model) -> const Subcard::s_Subcard* {
        for (const Subcard::s_Subcard& c : catalogue)
            if (c.modelId == model) return &c;
        return nullptr;
    };
    // what each slot shows: its cards and the connectors of the one card it can hold
    struct Content {
        QVector<int> cards;
        bool placed = false;
        const Subcard::s_Subcard* drawn = nullptr;
    };
    QVector<Content> contents;
    int height = 0;
    for (const Column& c : columns) {
        Content content;
        for (const Slot::s_InlineSubcard& placed : c.slot->subcards)
            content.cards << placed.moduleId;
        content.placed = !content.cards.isEmpty();
        if (!content.placed)
            for (const Slot::s_Subcard& accepted : c.group->attr->subcards)
                content.cards << accepted.moduleId;
        if (content.cards.size() == 1) content.drawn = cardOf(content.cards.first());
        const int connectors = content.drawn ? int(content.drawn->connectors.connectors.size()) : 0;
        height = std::max(height, 70 + 30 * int(content.cards.size()) + 20 * connectors);
        contents.push_back(content);
    }
    const int slotWidth = 112;
    const int gap = 6;
    const int top = 26;
    const int width = columns.size() * (slotWidth + gap) + gap;
    const int total = top + height + gap;
    open("div", {{"class", "scroll"}});
    open("svg", {{"xmlns", QStringLiteral("http://www.w3.org/2000/svg")},
                 {"class", QStringLiteral("chassis")},
                 {"data-chassis", id},
                 {"width", QString::number(width)},
                 {"height", QString::number(total)},
                 {"viewBox", QStringLiteral("0 0 %1 %2").arg(width).arg(total)}});
    open("rect", {{"x", "0"},
                  {"y", QString::number(top - 4)},
                  {"width", QString::number(width)},
                  {"height", QString::number(total - top + 4)},
                  {"rx", "6"},
                  {"fill", "#374151"}});
    close();
    auto colourOf = [](const char* group) {
        const QString g = QLatin1String(group);
        return g.startsWith("Main")     ? QStringLiteral("#6b7280")
               : g.startsWith("Input")  ? QStringLiteral("#15803d")
               : g.startsWith("Output") ? QStringLiteral("#1d4ed8")
               : g.startsWith("Mix")    ? QStringLiteral("#7e22ce")
                                        : QStringLiteral("#b45309");
    };
    // one band per run of slots of the same group, with its printed label
    for (int i = 0; i < columns.size();) {
        int j = i;
        while (j < columns.size() && columns[j].group == columns[i].group)
            ++j;
        const int x = gap + i * (slotWidth + gap);
        const int w = (j - i) * (slotWidth + gap) - gap;
        open("rect", {{"x", QString::number(x)},
                      {"y", "2"},
                      {"width", QString::number(w)},
                      {"height", "18"},
                      {"rx", "3"},
                      {"fill", colourOf(columns[i].group->name)}});
        element("title", QLatin1String(columns[i].group->name));
        close();
        const QString silk = text(columns[i].group->attr->silkScreenName);
        element("text", silk.isEmpty() ? QLatin1String(columns[i].group->name) : silk,
                {{"x", QString::number(x + w / 2)},
                 {"y", "15"},
                 {"fill", "#fff"},
                 {"font-size", "12"},
                 {"font-weight", "bold"},
                 {"text-anchor", "middle"}});
        i = j;
    }
    for (int i = 0; i < columns.size(); ++i) {
        const Column& c = columns[i];
        const Content& content = contents[i];
        const int x = gap + i * (slotWidth + gap);
        open("g", {{"class", "slot"}, {"data-slot", QString::number(c.slot->index)}});
        open("rect", {{"x", QString::number(x)},
                      {"y", QString::number(top + 2)},
                      {"width", QString::number(slotWidth)},
                      {"height", QString::number(height)},
                      {"rx", "4"},
                      {"fill", content.placed ? QStringLiteral("#e0e7ff") : QStringLiteral("#f9fafb")},
                      {"stroke", colourOf(c.group->name)},
                      {"stroke-width", "2"}});
        element("title",
                QStringLiteral("%1 %2 (%3)").arg(label(kSlot)).arg(c.slot->index).arg(c.group->name));
        close();
        element("text", QStringLiteral("%1 %2").arg(label(kSlot)).arg(c.slot->index),
                {{"x", QString::number(x + 8)},
                 {"y", QString::number(top + 22)},
                 {"font-size", "14"},
                 {"font-weight", "bold"}});
        int y = top + 42;
        element("text", content.placed ? label(kPlaced) : label(kAccepts),
                {{"x", QString::number(x + 8)},
                 {"y", QString::number(y)},
                 {"font-size", "11"},
                 {"fill", "#6b7280"}});
        for (int model : content.cards) {
            y += 15;
            element("text", QString::number(model),
                    {{"x", QString::number(x + 8)},
                     {"y", QString::number(y)},
                     {"font-size", "12"},
                     {"font-weight", content.placed ? "bold" : "normal"}});
            y += 14;
            const QString name = cardName(model);
            element("text", elide(name, 17),
                    {{"x", QString::number(x + 8)}, {"y", QString::number(y)}, {"font-size", "10"}});
        }
        if (content.drawn)
            for (const Subcard::s_Connector& connector : content.drawn->connectors.connectors) {
                y += 20;
                const bool input = connector.interfaceType == 2;
                open("rect", {{"x", QString::number(x + 8)},
                              {"y", QString::number(y - 13)},
                              {"width", QString::number(slotWidth - 16)},
                              {"height", "17"},
                              {"rx", "3"},
                              {"fill", input ? QStringLiteral("#dcfce7") : QStringLiteral("#dbeafe")},
                              {"stroke", input ? QStringLiteral("#15803d") : QStringLiteral("#1d4ed8")}});
                close();
                element("text",
                        QStringLiteral("%1  %2 %3")
                            .arg(connector.position)
                            .arg(connectorName(connector.type, true), input ? label(kInput)
                                                                      : connector.interfaceType == 1
                                                                          ? label(kOutput)
                                                                          : QString()),
                        {{"x", QString::number(x + 14)}, {"y", QString::number(y)}, {"font-size", "11"}});
            }
        close(); // g
    }
    close(); // svg
    close(); // div
}

// ---- screens ---------------------------------------------------------------------

void Page::screen(const QString& id, const Screen::s_VrnScreen& screen, const layout::Feeds& feeds) {
    open("section", {{"id", id}});
    element("h3", QStringLiteral("%1 %2").arg(label(kScreenType)).arg(screen.type));
    for (int m = 0; m < int(screen.deviceModes.size()); ++m) {
        const Screen::s_DeviceMode& mode = screen.deviceModes[m];
        const QString modeId = QStringLiteral("%1-m%2").arg(id).arg(m);
        element("h4", QStringLiteral("%1 %2").arg(label(kDeviceMode)).arg(mode.value), {{"id", modeId}});
        open("div", {{"class", "templates"}});
        for (int t = 0; t < int(mode.templetes.size()); ++t)
            templete(QStringLiteral("%1-t%2").arg(modeId).arg(t), mode.templetes[t], feeds);
        close();
        if (!mode.layerTypes.empty()) {
            open("table", {{"class", "layertypes"}});
            open("tr");
            element("th", label(kLayerType));
            element("th", label(kMax));
            element("th", label(kValid));
            close();
            for (const Screen::s_LayerType& lt : mode.layerTypes) {
                open("tr");
                element("td", QString::number(lt.value));
                element("td", QString::number(lt.layerCount.max));
                element("td", QString::number(lt.layerCount.valid));
                close();
            }
            close();
        }
    }
    close();
}

void Page::templete(const QString& id, const Screen::s_Templete& t, const layout::Feeds& feeds) {
    // one scale for every layout of the template, so that they compare
    double extent = 1;
    QVector<QVector<layout::Finding>> findings;
    for (const Screen::s_Layout& l : t.layouts) {
        const layout::Frame frame = layout::frameOf(l);
        extent = std::max({extent, double(frame.width), double(frame.height)});
        for (const Screen::s_Cell& c : l.cells)
            extent = std::max({extent, double(c.x) + c.width, double(c.y) + c.height});
        findings.push_back(layout::analyse(l, feeds));
    }
    const bool faulty =
        std::any_of(findings.begin(), findings.end(), [](const auto& f) { return !f.isEmpty(); });
    open("div", {{"class", faulty ? QStringLiteral("template faulty") : QStringLiteral("template")},
                 {"id", id},
                 {"data-template", id}});
    element("h4", QStringLiteral("%1: %2").arg(label(kTemplate), pick(t.name.en, t.name.zhCN)));
    open("div", {{"class", "layouts"}});
    for (int l = 0; l < int(t.layouts.size()); ++l)
        layoutPicture(QStringLiteral("%1-l%2").arg(id).arg(l), t.layouts[l], findings[l], 320.0 / extent);
    close();
    if (faulty) {
        element("h5", label(kFindings));
        open("ul", {{"class", "findings"}});
        for (int l = 0; l < int(t.layouts.size()); ++l)
            for (const layout::Finding& f : findings[l]) {
                const QString target = f.cell >= 0 ? QStringLiteral("%1-l%2-c%3").arg(id).arg(l).arg(f.cell)
                                                   : QStringLiteral("%1-l%2").arg(id).arg(l);
                open("li", {{"data-finding", layout::code(f.fault)}});
                link(target, QStringLiteral("%1 %2: ").arg(label(kScreen)).arg(t.layouts[l].screenId));
                m_x.writeCharacters(f.text);
                close();
            }
        close();
    }
    close();
}

void Page::layoutPicture(const QString& id, const Screen::s_Layout& l,
                         const QVector<layout::Finding>& findings, double scale) {
    const layout::Frame frame = layout::frameOf(l);
    qint64 left = 0, topEdge = 0, right = frame.width, bottom = frame.height;
    for (const Screen::s_Cell& c : l.cells) {
        left = std::min<qint64>(left, c.x);
        topEdge = std::min<qint64>(topEdge, c.y);
        right = std::max<qint64>(right, qint64(c.x) + std::max(c.width, 0));
        bottom = std::max<qint64>(bottom, qint64(c.y) + std::max(c.height, 0));
    }
    const double pad = std::max(right - left, bottom - topEdge) * 0.02 + 1;
    const double vx = left - pad, vy = topEdge - pad, vw = right - left + 2 * pad,
                 vh = bottom - topEdge + 2 * pad;
    // where this layout's cells were read, for the problem list
    const int firstCell = m_cell;
    m_cell += int(l.cells.size());
    auto placeOf = [&](int cell) { return m_placed ? m_trace.cells()[firstCell + cell] : Place{}; };
    if (m_placed && !l.cells.empty()) {
        const QString file = m_tree.relative(placeOf(0).document);
        const QString screenAnchor = id.section(QLatin1Char('-'), 0, 1);
        m_fileAnchor.insert(file, screenAnchor);
    }
    QHash<int, QStringList> faultsOf; // cell -> codes
    QHash<int, QStringList> textsOf;
    for (const layout::Finding& f : findings) {
        const Place place = placeOf(std::max(f.cell, 0));
        Problem p{place.document.isEmpty() ? QString() : m_tree.relative(place.document),
                  place.line, // a layout-wide finding: at its first cell
                  place.column,
                  f.fault == layout::Fault::Gap ? Severity::Warning : Severity::Error,
                  layout::code(f.fault),
                  QStringLiteral("screen %1: %2").arg(l.screenId).arg(f.text)};
        m_anchorOf.insert(problemKey(p), f.cell >= 0 ? QStringLiteral("%1-c%2").arg(id).arg(f.cell) : id);
        m_problems.add(p);
        if (f.cell < 0) continue;
        const QString code = layout::code(f.fault).mid(7);
        if (!faultsOf[f.cell].contains(code)) faultsOf[f.cell] << code;
        textsOf[f.cell] << f.text;
        if (f.other >= 0) {
            if (!faultsOf[f.other].contains(code)) faultsOf[f.other] << code;
            textsOf[f.other] << f.text;
        }
    }
    open("figure", {{"id", id}, {"data-layout", id}});
    open("svg",
         {{"xmlns", QStringLiteral("http://www.w3.org/2000/svg")},
          {"data-template", id.section(QLatin1Char('-'), 0, -2)},
          {"data-layout", id},
          {"width", number(std::max(1.0, vw * scale))},
          {"height", number(std::max(1.0, vh * scale))},
          {"viewBox", QStringLiteral("%1 %2 %3 %4").arg(number(vx), number(vy), number(vw), number(vh))}});
    open("rect", {{"class", "frame"},
                  {"data-frame", id},
                  {"x", "0"},
                  {"y", "0"},
                  {"width", QString::number(frame.width)},
                  {"height", QString::number(frame.height)}});
    element("title", QStringLiteral("%1 %2 x %3").arg(label(kFrame)).arg(frame.width).arg(frame.height));
    close();
    for (int i = 0; i < int(l.cells.size()); ++i) {
        const Screen::s_Cell& c = l.cells[i];
        const bool fault = faultsOf.contains(i);
        open("g", {{"class", fault ? QStringLiteral("cell fault") : QStringLiteral("cell")},
                   {"id", QStringLiteral("%1-c%2").arg(id).arg(i)}});
        QString tip = QStringLiteral("%1 %2: %3 %4, row %5 column %6, slot %7 connector %8, %9,%10 %11 x %12")
                          .arg(label(kCell))
                          .arg(i + 1)
                          .arg(label(kScreen))
                          .arg(l.screenId)
                          .arg(c.row)
                          .arg(c.column)
                          .arg(c.slotIndex)
                          .arg(c.connectorIndex)
                          .arg(c.x)
                          .arg(c.y)
                          .arg(c.width)
                          .arg(c.height);
        for (const QString& t : textsOf.value(i))
            tip += QLatin1Char('\n') + t;
        element("title", tip);
        open("rect", {{"data-cell", QString::number(i)},
                      {"data-x", QString::number(c.x)},
                      {"data-y", QString::number(c.y)},
                      {"data-w", QString::number(c.width)},
                      {"data-h", QString::number(c.height)},
                      {"data-slot", QString::number(c.slotIndex)},
                      {"data-connector", QString::number(c.connectorIndex)},
                      {"data-fault", faultsOf.value(i).join(QLatin1Char(' '))},
                      {"x", QString::number(c.x)},
                      {"y", QString::number(c.y)},
                      {"width", QString::number(std::max(c.width, 0))},
                      {"height", QString::number(std::max(c.height, 0))}});
        close();
        const double size = std::max(1.0, std::min(std::max(c.width, 0), std::max(c.height, 0)) * 0.22);
        element("text", QStringLiteral("S%1 C%2").arg(c.slotIndex).arg(c.connectorIndex),
                {{"x", number(c.x + c.width / 2.0)},
                 {"y", number(c.y + c.height / 2.0)},
                 {"font-size", number(size)}});
        close(); // g
    }
    close(); // svg
    element("figcaption", QStringLiteral("%1 %2 - %3 x %4 - %5 x %6")
                              .arg(label(kScreen))
                              .arg(l.screenId)
                              .arg(l.rows)
                              .arg(l.columns)
                              .arg(frame.width)
                              .arg(frame.height));
    close(); // figure
}

void Page::layers(const Devicecfg::s_Device& device) {
    element("h3", label(kLayerFiles));
    if (device.layers.isEmpty()) {
        element("p", label(kNone), {{"class", "muted"}});
        return;
    }
    auto flag = [](qint32 support) { return support == 1 ? QStringLiteral("\u2713") : QStringLiteral("-"); };
    open("table");
    open("tr");
    for (Label l : {kLayerType, kInversion, kShadow, kCutFill})
        element("th", label(l));
    close();
    for (const Layercfg::s_VrnLayer& layer : device.layers) {
        open("tr");
        element("td", QString::number(layer.type));
        element("td", flag(layer.isInverse.support));
        element("td", flag(layer.shadow.shadow.support));
        element("td", flag(layer.cutFill.cutFill.support));
        close();
    }
    close();
}

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
    for (auto it = m_trace.cardDocuments().cbegin(); it != m_trace.cardDocuments().cend(); ++it)
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
    for (auto it = m_trace.connectorDocuments().cbegin(); it != m_trace.connectorDocuments().cend(); ++it)
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

} // namespace

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
