#include "device/layerconfig.h"

#include "common/xmlread.h"

namespace LCD {
namespace ConfigModel {

using namespace xml;

LCD_DEFINE_SINGLETON(LayerConfigManager, Layer)

namespace {

// Texts are translated in the class's own context.
constexpr char kTrContext[] = "LCD::ConfigModel::LayerConfigManager";

// Every reader of a layer part is lenient: a missing element leaves its
// target alone. A present group is read whole into a fresh record, so the
// parts it leaves out are at their defaults.

void readCutFill(const QDomElement& e, Layercfg::s_CutFill& out) {
    if (e.isNull()) return;
    Layercfg::s_CutFill c;
    update(e, kLenientPair, c.cutFill);
    update(child(e, "Enable"), kLenientOptions, ListFrom::AnyChild, c.enable);

    const QDomElement curve = child(e, "Curve");
    update(curve, kLenientPair, c.curve);
    const QDomElement start = child(curve, "Start");
    update(start, kLenientPair, c.curveStart);
    update(child(start, "X"), kLenient, c.curveStartX);
    update(child(start, "Y"), kLenient, c.curveStartY);
    const QDomElement end = child(curve, "End");
    update(end, kLenientPair, c.curveEnd);
    update(child(end, "X"), kLenient, c.curveEndX);
    update(child(end, "Y"), kLenient, c.curveEndY);

    const QDomElement relative = child(e, "Relative");
    update(relative, kLenientPair, c.relative);
    update(child(relative, "X"), kLenient, c.relativeX);
    update(child(relative, "Y"), kLenient, c.relativeY);
    update(child(relative, "Width"), kLenient, c.relativeWidth);
    update(child(relative, "Height"), kLenient, c.relativeHeight);
    out = std::move(c);
}

// "General" has no pair of its own (general stays -1, -1); without it neither
// its "Enable" nor its "Feather" is read.
void readShadow(const QDomElement& e, Layercfg::s_Shadow& out) {
    if (e.isNull()) return;
    Layercfg::s_Shadow s;
    update(e, kLenientPair, s.shadow);

    const QDomElement general = child(e, "General");
    update(child(general, "Enable"), kLenientOptions, ListFrom::None, s.generalEnable);
    update(child(general, "Feather"), kLenient, s.feather);

    const QDomElement window = child(e, "Window");
    update(window, kLenientPair, s.window);
    update(child(window, "Width"), kLenient, s.windowWidth);
    update(child(window, "Height"), kLenient, s.windowHeight);
    update(child(window, "X"), kLenient, s.windowX);
    update(child(window, "Y"), kLenient, s.windowY);

    const QDomElement color = child(e, "Color");
    update(color, kLenientPair, s.color);
    update(child(color, "R"), kLenient, s.colorR);
    update(child(color, "G"), kLenient, s.colorG);
    update(child(color, "B"), kLenient, s.colorB);
    update(child(color, "Opacity"), kLenient, s.colorOpacity);
    out = std::move(s);
}

} // namespace

LayerConfigManager::LayerConfigManager() = default;
LayerConfigManager::~LayerConfigManager() = default;

bool LayerConfigManager::parseDeviceLayercfg(const QString& path, QString& error,
                                             Layercfg::s_VrnLayer& layer) {
    QDomDocument doc;
    return loadDocument(path, Loader{kDeviceFile, kTrContext, LCD_LOG_SITE}, doc, error) &&
           parseDeviceLayercfg(doc, error, layer);
}

bool LayerConfigManager::parseDeviceLayercfg(const QDomDocument& doc, QString& error,
                                             Layercfg::s_VrnLayer& layer) {
    const Loader loader{kDeviceFile, kTrContext, LCD_LOG_SITE};
    if (!checkDocumentRoot(doc, loader, error)) return false;
    Section s(error, loader);
    // Only the first "Layer" counts.
    const QDomElement e = s.need(s.need(s.need(doc.documentElement(), "Device"), "Layers"), "Layer");
    if (!s.complete()) return false;
    layer.type = intAttr(e, "Type");
    readCutFill(child(e, "CutFill"), layer.cutFill);
    readShadow(child(e, "Shadow"), layer.shadow);
    update(child(e, "IsInverse"), kLenientOptions, ListFrom::AnyChild, layer.isInverse);
    return true;
}

} // namespace ConfigModel
} // namespace LCD
