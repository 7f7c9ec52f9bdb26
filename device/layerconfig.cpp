#include "device/layerconfig.h"

#include "common/xmlread.h"

namespace LCD {
namespace ConfigModel {

using namespace xml;

LCD_DEFINE_SINGLETON(LayerConfigManager, Layer)

namespace {

// Every reader of a layer part is lenient: a missing element leaves its
// target alone. A present group is read whole into a fresh record, so the
// parts it leaves out are at their defaults.

void readCutFill(const QDomElement& e, Layercfg::s_CutFill& out) {
    if (e.isNull()) return;
    Layercfg::s_CutFill c;
    readPairLenient(e, c.cutFill);
    readOptionsLenient(child(e, "Enable"), c.enable, ListFrom::AnyChild);

    const QDomElement curve = child(e, "Curve");
    readPairLenient(curve, c.curve);
    const QDomElement start = child(curve, "Start");
    readPairLenient(start, c.curveStart);
    readWideRangeLenient(child(start, "X"), c.curveStartX);
    readWideRangeLenient(child(start, "Y"), c.curveStartY);
    const QDomElement end = child(curve, "End");
    readPairLenient(end, c.curveEnd);
    readWideRangeLenient(child(end, "X"), c.curveEndX);
    readWideRangeLenient(child(end, "Y"), c.curveEndY);

    const QDomElement relative = child(e, "Relative");
    readPairLenient(relative, c.relative);
    readWideRangeLenient(child(relative, "X"), c.relativeX);
    readWideRangeLenient(child(relative, "Y"), c.relativeY);
    readWideRangeLenient(child(relative, "Width"), c.relativeWidth);
    readWideRangeLenient(child(relative, "Height"), c.relativeHeight);
    out = std::move(c);
}

// "General" has no pair of its own (general stays -1, -1); without it neither
// its "Enable" nor its "Feather" is read.
void readShadow(const QDomElement& e, Layercfg::s_Shadow& out) {
    if (e.isNull()) return;
    Layercfg::s_Shadow s;
    readPairLenient(e, s.shadow);

    const QDomElement general = child(e, "General");
    readOptionsLenient(child(general, "Enable"), s.generalEnable, ListFrom::None);
    readRangeLenient(child(general, "Feather"), s.feather);

    const QDomElement window = child(e, "Window");
    readPairLenient(window, s.window);
    readRangeLenient(child(window, "Width"), s.windowWidth);
    readRangeLenient(child(window, "Height"), s.windowHeight);
    readRangeLenient(child(window, "X"), s.windowX);
    readRangeLenient(child(window, "Y"), s.windowY);

    const QDomElement color = child(e, "Color");
    readPairLenient(color, s.color);
    readRangeLenient(child(color, "R"), s.colorR);
    readRangeLenient(child(color, "G"), s.colorG);
    readRangeLenient(child(color, "B"), s.colorB);
    readRangeLenient(child(color, "Opacity"), s.colorOpacity);
    out = std::move(s);
}

} // namespace

LayerConfigManager::LayerConfigManager() = default;
LayerConfigManager::~LayerConfigManager() = default;

bool LayerConfigManager::parseDeviceLayercfg(const QString& path, QString& error,
                                             Layercfg::s_VrnLayer& layer) {
    QDomDocument doc;
    return loadDocument(path, Loader{kDeviceFile, staticMetaObject.className(), LCD_LOG_SITE}, doc, error) &&
           parseDeviceLayercfg(doc, error, layer);
}

bool LayerConfigManager::parseDeviceLayercfg(const QDomDocument& doc, QString& error,
                                             Layercfg::s_VrnLayer& layer) {
    const Loader loader{kDeviceFile, staticMetaObject.className(), LCD_LOG_SITE};
    if (!checkDocumentRoot(doc, loader, error)) return false;
    Section s(error, loader);
    // Only the first "Layer" counts.
    const QDomElement e = s.need(s.need(s.need(doc.documentElement(), "Device"), "Layers"), "Layer");
    if (!s.complete()) return false;
    layer.type = intAttr(e, "Type");
    readCutFill(child(e, "CutFill"), layer.cutFill);
    readShadow(child(e, "Shadow"), layer.shadow);
    readOptionsLenient(child(e, "IsInverse"), layer.isInverse, ListFrom::AnyChild);
    return true;
}

} // namespace ConfigModel
} // namespace LCD
