// lcdcfg report: the drawings of the page, the chassis of a model and the
// layouts of its screen templates to scale.

#include <QtCore/QFileInfo>

#include <algorithm>

#include "tools/lcdcfg/report_page.h"

namespace lcdcfg {
namespace page {

// A slot group's colour, by the start of its element name.
QString groupColour(const char* group) {
    const QString g = QLatin1String(group);
    return g.startsWith("Main")     ? QStringLiteral("#6b7280")
           : g.startsWith("Input")  ? QStringLiteral("#15803d")
           : g.startsWith("Output") ? QStringLiteral("#1d4ed8")
           : g.startsWith("Mix")    ? QStringLiteral("#7e22ce")
                                    : QStringLiteral("#b45309");
}

// shows; `height` the height of the tallest.
QVector<ChassisSlot> Page::chassisSlots(const QVector<layout::SlotGroup>& groups, int* height) const {
    QVector<ChassisSlot> slots;
    for (const layout::SlotGroup& group : groups)
        for (const Slot::s_Slot& slot : group.attr->slots)
            slots.push_back({&group, &slot, {}, false, nullptr});
    std::stable_sort(slots.begin(), slots.end(), [](const ChassisSlot& a, const ChassisSlot& b) {
        return a.slot->index < b.slot->index;
    });
    const std::vector<Subcard::s_Subcard> none;
    const std::vector<Subcard::s_Subcard>& catalogue =
        m_tree.cards() ? m_tree.cards()->subcardConfig() : none;
    auto cardOf = [&](int model) -> const Subcard::s_Subcard* {
        for (const Subcard::s_Subcard& c : catalogue)
            if (c.modelId == model) return &c;
        return nullptr;
    };
    *height = 0;
    for (ChassisSlot& s : slots) {
        for (const Slot::s_InlineSubcard& placed : s.slot->subcards)
            s.cards << placed.moduleId;
        s.placed = !s.cards.isEmpty();
        if (!s.placed)
            for (const Slot::s_Subcard& accepted : s.group->attr->subcards)
                s.cards << accepted.moduleId;
        if (s.cards.size() == 1) s.drawn = cardOf(s.cards.first());
        const int connectors = s.drawn ? int(s.drawn->connectors.connectors.size()) : 0;
        *height = std::max(*height, 70 + 30 * int(s.cards.size()) + 20 * connectors);
    }
    return slots;
}

// One band per run of slots of the same group, with its printed label.
void Page::chassisBands(const QVector<ChassisSlot>& slots) {
    for (int i = 0; i < slots.size();) {
        int j = i;
        while (j < slots.size() && slots[j].group == slots[i].group)
            ++j;
        const int x = kSlotGap + i * (kSlotWidth + kSlotGap);
        const int w = (j - i) * (kSlotWidth + kSlotGap) - kSlotGap;
        open("rect", {{"x", QString::number(x)},
                      {"y", "2"},
                      {"width", QString::number(w)},
                      {"height", "18"},
                      {"rx", "3"},
                      {"fill", groupColour(slots[i].group->name)}});
        element("title", QLatin1String(slots[i].group->name));
        close();
        const QString silk = text(slots[i].group->attr->silkScreenName);
        element("text", silk.isEmpty() ? QLatin1String(slots[i].group->name) : silk,
                {{"x", QString::number(x + w / 2)},
                 {"y", "15"},
                 {"fill", "#fff"},
                 {"font-size", "12"},
                 {"font-weight", "bold"},
                 {"text-anchor", "middle"}});
        i = j;
    }
}

// One slot at `x`: its number, its cards, and the connectors of the one card it holds.
void Page::chassisSlot(const ChassisSlot& s, int x, int height) {
    open("g", {{"class", "slot"}, {"data-slot", QString::number(s.slot->index)}});
    open("rect", {{"x", QString::number(x)},
                  {"y", QString::number(kChassisTop + 2)},
                  {"width", QString::number(kSlotWidth)},
                  {"height", QString::number(height)},
                  {"rx", "4"},
                  {"fill", s.placed ? QStringLiteral("#e0e7ff") : QStringLiteral("#f9fafb")},
                  {"stroke", groupColour(s.group->name)},
                  {"stroke-width", "2"}});
    element("title", QStringLiteral("%1 %2 (%3)").arg(label(kSlot)).arg(s.slot->index).arg(s.group->name));
    close();
    element("text", QStringLiteral("%1 %2").arg(label(kSlot)).arg(s.slot->index),
            {{"x", QString::number(x + 8)},
             {"y", QString::number(kChassisTop + 22)},
             {"font-size", "14"},
             {"font-weight", "bold"}});
    int y = kChassisTop + 42;
    element(
        "text", s.placed ? label(kPlaced) : label(kAccepts),
        {{"x", QString::number(x + 8)}, {"y", QString::number(y)}, {"font-size", "11"}, {"fill", "#6b7280"}});
    for (int model : s.cards) {
        y += 15;
        element("text", QString::number(model),
                {{"x", QString::number(x + 8)},
                 {"y", QString::number(y)},
                 {"font-size", "12"},
                 {"font-weight", s.placed ? "bold" : "normal"}});
        y += 14;
        element("text", elide(cardName(model), 17),
                {{"x", QString::number(x + 8)}, {"y", QString::number(y)}, {"font-size", "10"}});
    }
    if (s.drawn)
        for (const Subcard::s_Connector& connector : s.drawn->connectors.connectors) {
            y += 20;
            const bool input = connector.interfaceType == 2;
            open("rect", {{"x", QString::number(x + 8)},
                          {"y", QString::number(y - 13)},
                          {"width", QString::number(kSlotWidth - 16)},
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

void Page::chassis(const QString& id, const Devicecfg::s_Device& device) {
    const QVector<layout::SlotGroup> groups = layout::slotGroups(device.slot.slots);
    int height = 0;
    const QVector<ChassisSlot> slots = chassisSlots(groups, &height);
    element("h3", label(kChassis), {{"id", id}});
    if (slots.isEmpty()) {
        element("p", label(kNone), {{"class", "muted"}});
        return;
    }
    const int width = slots.size() * (kSlotWidth + kSlotGap) + kSlotGap;
    const int total = kChassisTop + height + kSlotGap;
    open("div", {{"class", "scroll"}});
    open("svg", {{"xmlns", QStringLiteral("http://www.w3.org/2000/svg")},
                 {"class", QStringLiteral("chassis")},
                 {"data-chassis", id},
                 {"width", QString::number(width)},
                 {"height", QString::number(total)},
                 {"viewBox", QStringLiteral("0 0 %1 %2").arg(width).arg(total)}});
    open("rect", {{"x", "0"},
                  {"y", QString::number(kChassisTop - 4)},
                  {"width", QString::number(width)},
                  {"height", QString::number(total - kChassisTop + 4)},
                  {"rx", "6"},
                  {"fill", "#374151"}});
    close();
    chassisBands(slots);
    for (int i = 0; i < slots.size(); ++i)
        chassisSlot(slots[i], kSlotGap + i * (kSlotWidth + kSlotGap), height);
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

} // namespace page
} // namespace lcdcfg
