#pragma once

// The report page's own room: its words, its writing helpers and the Page
// that writes it (report.cpp writes the page, report_drawings.cpp the
// chassis and layout pictures).

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtCore/QXmlStreamWriter>

#include <initializer_list>
#include <string>
#include <utility>

#include "tools/lcdcfg/layout.h"
#include "tools/lcdcfg/problems.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {
namespace page {

using namespace LCD::ConfigModel;

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
    kStopped,
    kLabelCount
};

extern const char* const kLabels[kLabelCount][2];

QString text(const std::string& s);
// `s` cut to about `width` Latin letters (a CJK character counts two).
QString elide(const QString& s, int width);
QString number(double v);
// A problem's identity, to link it to the picture that shows it.
QString problemKey(const Problem& p);

// The chassis picture's measures: a slot's width, the gap between slots, the
// height of the group bands above them.
constexpr int kSlotWidth = 112;
constexpr int kSlotGap = 6;
constexpr int kChassisTop = 26;

// A slot group's colour, by the start of its element name.
QString groupColour(const char* group);

// One slot of the chassis picture and what it shows: its cards, and the
// connectors of the one card it can hold.
struct ChassisSlot {
    const layout::SlotGroup* group;
    const Slot::s_Slot* slot;
    QVector<int> cards;
    bool placed = false; // cards placed in it, else the cards it accepts
    const Subcard::s_Subcard* drawn = nullptr;
};

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
    void stoppedLoads();
    void device(int d, const Devicecfg::s_Device& device);
    void chassis(const QString& id, const Devicecfg::s_Device& device);
    QVector<ChassisSlot> chassisSlots(const QVector<layout::SlotGroup>& groups, int* height) const;
    void chassisBands(const QVector<ChassisSlot>& slots);
    void chassisSlot(const ChassisSlot& s, int x, int height);
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

} // namespace page
} // namespace lcdcfg
