#include "device/screenconfig.h"

#include "common/document.h"
#include "common/xmlread.h"

namespace LCD {
namespace ConfigModel {

LCD_DEFINE_SINGLETON(ScreenConfigManager, Screen)

namespace {

using namespace Screen;
using xml::child;
using xml::Children;
using xml::forEachChild;
using xml::intAttr;
using xml::ListFrom;

// Texts are translated in the class's own context.
constexpr char kTrContext[] = "LCD::ConfigModel::ScreenConfigManager";

// Unless a default is written at the call, every attribute of a screen file is
// read with an empty default: an absent attribute of a present element stores
// 0. Ranges read the six attributes (step is kept); option lists the four
// header attributes, then "Value" of every child element whatever its name. A
// missing element keeps what the record held.
const xml::Attrs& kRange = xml::kEmpty;
const xml::Attrs& kOptionHeader = xml::kEmptyOptions;
const xml::Attrs kNameLimits{{"DataType", ""}, {"Min", ""}, {"Max", ""}};

// ---- device modes ---------------------------------------------------------

const xml::Attrs kCell{{"X", ""},   {"Y", ""},      {"Width", ""},     {"Height", ""},
                       {"Row", ""}, {"Column", ""}, {"SlotIndex", ""}, {"ConnectorIndex", ""}};

s_Cell readCell(const QDomElement& e) {
    return xml::readAs<s_Cell>(e, kCell);
}

s_Layout readLayout(const QDomElement& e) {
    auto layout = xml::readAs<s_Layout>(e, {{"Rows", ""}, {"Columns", ""}, {"ScreenId", ""}});
    layout.cells = xml::readEachChild(e, nullptr, RecordKind::Cell, readCell);
    return layout;
}

s_Templete readTemplete(const QDomElement& e) {
    s_Templete t;
    const Children c(e);
    const QDomElement name = c("Name");
    t.name = {xml::textAttr(name, "en"), xml::textAttr(name, "zh_CN")};
    const Children size(c("PhysicalSize"));
    xml::update(size("DotPitch"), kRange, t.physicalSize.dotPitch);
    xml::update(size("Width"), kRange, t.physicalSize.width);
    xml::update(size("Height"), kRange, t.physicalSize.height);
    xml::update(size("Unit"), kOptionHeader, ListFrom::AnyChild, t.physicalSize.unit);
    t.layouts = xml::readEachChild(c("Layouts"), nullptr, RecordKind::Layout, readLayout);
    return t;
}

s_LayerType readLayerType(const QDomElement& e) {
    s_LayerType l;
    l.value = intAttr(e, "Value");
    xml::update(child(e, "LayerCount"), {{"Max", "1"}, {"Valid", "1"}}, l.layerCount);
    xml::update(child(e, "Unit"), {{"Value", "1"}, {"DataType", "1"}}, ListFrom::AnyChild, l.unit);
    return l;
}

// A device mode is complete only with "PVW" and "Templetes".
void readDeviceMode(xml::Section& s, const QDomElement& e, s_DeviceMode& mode) {
    mode.value = intAttr(e, "Value");
    const Children c(e);
    const QDomElement pvw = s.need(c, "PVW");
    mode.pvw = xml::readAs<s_Pvw>(pvw, {{"Support", "1"}, {"SoftImp", "1"}});
    const QDomElement templetes = s.need(c, "Templetes");
    if (!s.complete()) return;
    mode.templetesValue = intAttr(templetes, "Value", "1");
    mode.templetes = xml::readEachChild(templetes, nullptr, RecordKind::Templete, readTemplete);
    mode.layerTypes = xml::readEachChild(c("LayerTypes"), RecordKind::LayerType, readLayerType);
}

// ---- feature tree ---------------------------------------------------------

void readGeneral(const Children& features, s_General& out) {
    const QDomElement general = features("General");
    if (general.isNull()) return; // "NameGB2312" is read only beside a "General"
    xml::update(general, xml::kEmptyPair, out);
    if (const QDomElement name = child(general, "Name"); !name.isNull()) {
        out.prefix = xml::textAttr(name, "Prefix");
        xml::update(name, kNameLimits, out.name);
    }
    xml::update(features("NameGB2312"), kNameLimits, out.nameGB2312);
}

// Support, editable and the actual and preset lists of one colour setting.
void readColorSetting(const QDomElement& e, const char* actual, const char* preset, s_ColorSetting& out) {
    xml::update(e, xml::kEmptyPair, out);
    xml::update(child(e, actual), kOptionHeader, ListFrom::AnyChild, out.actual);
    xml::update(child(e, preset), kOptionHeader, ListFrom::AnyChild, out.preset);
}

// A timing axis starts from its defaults; "SyncPolarity" gives only the four
// header attributes (its min and max stay 0 and 255, its children are not kept).
s_TimingAxis readTimingAxis(const QDomElement& e) {
    s_TimingAxis axis;
    xml::update(e, xml::kEmptyPair, axis);
    const Children c(e);
    xml::update(c("AddTime"), kRange, axis.addTime);
    xml::update(c("FrontPorch"), kRange, axis.frontPorch);
    xml::update(c("Sync"), kRange, axis.sync);
    xml::update(c("SyncPolarity"), kOptionHeader, axis.polarity);
    xml::update(c("TotalTime"), kRange, axis.totalTime);
    return axis;
}

void readTiming(const QDomElement& e, s_Timing& out) {
    xml::update(e, xml::kEmptyPair, out);
    const Children c(e);
    xml::update(c("Interlaced"), kOptionHeader, ListFrom::AnyChild, out.interlaced);
    xml::update(c("Refresh"), kRange, out.refresh);
    out.horizontal = readTimingAxis(c("Horizontal"));
    out.vertical = readTimingAxis(c("Vertical"));
}

void readFeather(const QDomElement& e, s_Feather& out) {
    xml::update(e, xml::kEmptyPair, out);
    const Children c(e);
    xml::update(c("Enable"), kOptionHeader, ListFrom::None, out.enable);
    xml::update(c("Type"), kOptionHeader, ListFrom::AnyChild, out.type);
    xml::update(c("Gamma"), kRange, out.gamma);
    xml::update(c("Width"), kRange, out.width);
}

void readRefOutputPara(const QDomElement& e, s_RefOutputPara& out) {
    xml::update(e, {{"Support", ""}, {"Editable", ""}, {"CustomBuild", ""}, {"CustomDelete", ""}}, out);
    const Children c(e);
    readColorSetting(c("ColorDepths"), "ActualColorDepth", "PresetColorDepth", out.colorDepths);
    readColorSetting(c("ColorSpaces"), "ActualColorSpace", "PresetColorSpace", out.colorSpaces);
    readColorSetting(c("ColorRanges"), "ActualColorRange", "PresetColorRange", out.colorRanges);
    xml::update(c("FormatMapping"), kOptionHeader, ListFrom::AnyChild, out.formatMapping);
    readTiming(c("Timing"), out.timing);
    readFeather(c("Feather"), out.feather);
}

// The mosaic group is built fresh and stored whole.
s_Mosaic readMosaic(const QDomElement& e) {
    s_Mosaic m;
    xml::update(e, xml::kEmptyPair, m);
    const Children c(e);
    xml::update(c("Type"), kOptionHeader, ListFrom::AnyChild, m.type);
    const Children window(c("Window")); // its own flags are not read
    xml::update(window("X"), kRange, m.window.x);
    xml::update(window("Y"), kRange, m.window.y);
    xml::update(window("Width"), kRange, m.window.width);
    xml::update(window("Height"), kRange, m.window.height);
    readRefOutputPara(c("RefOutputPara"), m.refOutputPara);
    return m;
}

void readTestPattern(const QDomElement& e, s_TestPattern& out) {
    xml::update(e, xml::kEmptyPair, out);
    const Children c(e);
    xml::update(c("Enable"), kOptionHeader, ListFrom::AnyChild, out.enable);
    xml::update(c("Type"), kOptionHeader, ListFrom::AnyChild, out.type);
    xml::update(c("Bright"), kOptionHeader, ListFrom::AnyChild, out.bright);
    xml::update(c("GridGear"), kOptionHeader, ListFrom::AnyChild, out.gridGear);
    if (const QDomElement grid = c("GridPixel"); !grid.isNull()) {
        xml::update(grid, kRange, out.gridPixel);
        out.gridPixel.step = xml::doubleAttr(grid, "Coefficient");
    }
    xml::update(c("GridType"), kOptionHeader, ListFrom::AnyChild, out.gridType);
    xml::update(c("GridLineWidth"), kRange, out.gridLineWidth);
    xml::update(c("Speed"), kOptionHeader, ListFrom::AnyChild, out.speed);
}

// Nothing here fails the load; a missing group keeps what `f` held. Only the
// presence-checked groups write a message, so the last one missing remains.
void readFeatures(const QDomElement& e, const Loader& loader, QString& error, s_Features& f) {
    const Children c(e);
    xml::Section noted(error, loader);
    constexpr xml::Missing kNoted = xml::Missing::Noted;
    readGeneral(c, f.general);
    if (const QDomElement mosaic = c("Mosaic"); !mosaic.isNull()) f.mosaic = readMosaic(mosaic);
    const Children background(c("BackgroundColor"));
    xml::update(background.element(), xml::kEmptyPair, f.backgroundColor);
    xml::update(background("R"), kRange, f.backgroundColor.r);
    xml::update(background("G"), kRange, f.backgroundColor.g);
    xml::update(background("B"), kRange, f.backgroundColor.b);
    const QDomElement layout = c("Layout");
    xml::update(layout, xml::kEmptyPair, f.layout);
    xml::update(child(layout, "X"), kRange, f.layout.x);
    xml::update(child(layout, "Y"), kRange, f.layout.y);
    xml::update(c("PGMEdit"), kOptionHeader, ListFrom::AnyChild, f.pgmEdit);
    xml::update(c("Selected"), kOptionHeader, ListFrom::AnyChild, f.selected);
    noted.need(c, "ImageQuality", kNoted);
    xml::update(c("Freeze"), kOptionHeader, ListFrom::AnyChild, f.freeze);
    noted.need(c, "FTB", kNoted);
    readTestPattern(noted.need(c, "TestPattern", kNoted), f.testPattern);
    for (const char* name : {"SwitchEffect", "Tbar", "HDR", "Genlock"})
        noted.need(c, name, kNoted);
}

// ---- the screen -----------------------------------------------------------

const xml::Attrs kScreen{
    {"Type", ""},        {"Support", ""},      {"SpliceMode", ""}, {"IncompleteSplicing", ""},
    {"CustomBuild", ""}, {"CustomDelete", ""}, {"Editable", ""},   {"LimitNum", ""}};

void readScreen(const QDomElement& e, const Loader& loader, QString& error, s_VrnScreen& screen) {
    xml::update(e, kScreen, screen);

    xml::Section noted(error, loader);
    if (const QDomElement modes = noted.need(e, "DeviceModes", xml::Missing::Noted); !modes.isNull()) {
        screen.deviceModesInfo = xml::readAs<s_SupportInfo>(modes, xml::kLenientPair);
        std::vector<s_DeviceMode> list; // replaces the record's list; an incomplete mode is dropped
        forEachChild(modes, [&](const QDomElement& mode) {
            const observe::Record r(RecordKind::DeviceMode, list.size(), mode);
            s_DeviceMode m;
            if (xml::transact(m, error, loader,
                              [&](xml::Section& s, s_DeviceMode& out) { readDeviceMode(s, mode, out); }))
                list.push_back(std::move(m));
        });
        screen.deviceModes = std::move(list);
    }

    if (const QDomElement features = noted.need(e, "Features", xml::Missing::Noted); !features.isNull())
        readFeatures(features, loader, error, screen.features);
}

} // namespace

bool ScreenConfigManager::parseDeviceScreencfg(const QString& path, QString& error,
                                               Screen::s_VrnScreen& screen) {
    QDomDocument doc;
    return loadDocument(path, Loader{kDeviceFile, kTrContext, LCD_LOG_SITE}, doc, error) &&
           parseDeviceScreencfg(doc, error, screen);
}

bool ScreenConfigManager::parseDeviceScreencfg(const QDomDocument& doc, QString& error,
                                               Screen::s_VrnScreen& screen) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    if (!checkDocumentRoot(doc, loader, error)) return false;
    // Only the first "Screen" is read; without the three the file is unusable.
    xml::Section required(error, loader);
    const QDomElement device = required.need(doc.documentElement(), "Device");
    const QDomElement screens = required.need(device, "Screens");
    const QDomElement e = required.need(screens, "Screen");
    if (!required.complete()) return false;
    readScreen(e, loader, error, screen);
    return true;
}

} // namespace ConfigModel
} // namespace LCD
