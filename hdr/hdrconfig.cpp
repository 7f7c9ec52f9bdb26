#include "hdr/hdrconfig.h"

#include "common/facts.h"

#include <QtCore/QDebug>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include "common/xmlread.h"

KVC_REGISTER_COMPONENT(LCD::ConfigModel::HDRConfig,
                       LCD::ConfigModel::facts::component(LCD::ConfigModel::facts::Component::Hdr).id)

namespace LCD {
namespace ConfigModel {

using namespace xml;

namespace {

const char kInputFile[] = "lcdhdrinputconfig.xml";
const char kOutputFile[] = "lcdhdroutputconfig.xml";

// Fallbacks of "AUTO" when the actual value is unknown (-1).
constexpr int kUnknown = -1;
constexpr int kBitDepthFallback = 8;
constexpr int kColorGamutFallback = 1;   // Rec.709
constexpr int kDynamicRangeFallback = 0; // SDR

struct ValueText {
    int value;
    const char* text;
};

template <size_t N> QHash<int, const char*> textTable(const ValueText (&rows)[N]) {
    QHash<int, const char*> table;
    table.reserve(static_cast<int>(N));
    for (const ValueText& row : rows)
        table.insert(row.value, row.text);
    return table;
}

const ValueText kBitDepthTexts[] = {
    {HDRAutoValue, "AUTO"}, {8, "8 bit"}, {10, "10 bit"}, {12, "12 bit"}, {16, "16 bit"},
};
// 1 is 4:2:2 and 2 is 4:4:4.
const ValueText kColorSpaceTexts[] = {
    {HDRAutoValue, "AUTO"},
    {0, "RGB 4:4:4"},
    {1, "YCbCr 4:2:2"},
    {2, "YCbCr 4:4:4"},
};
const ValueText kColorGamutTexts[] = {
    {HDRAutoValue, "AUTO"}, {0, "Rec.601"}, {1, "Rec.709"}, {2, "DCI-P3"},
    {3, "Rec.2020"},        {4, "NTSC"},    {5, "aRGB"},
};
const ValueText kDynamicRangeTexts[] = {
    {HDRAutoValue, "AUTO"},
    {0, "SDR"},
    {1, "HDR10"},
    {2, "HLG"},
};

int resolveAuto(int value, int actual, int fallback) {
    if (value != HDRAutoValue) return value;
    return actual == kUnknown ? fallback : actual;
}

// Reads one option file into `table`; a missing file or a rejected one is a
// warning reported from the init operation that asked.
void initTable(HDRConfig& config, const char* fileName, const char* missingText, HDROptionTable& table,
               const LogSite& site) {
    const QString path = HDRConfig::optionFilePath(QLatin1String(fileName));
    const QMessageLogger log(site.file, site.line, site.function);
    if (!QFileInfo(path).isFile()) {
        log.warning().noquote() << missingText << path;
        observe::diagnose(DiagnosticKind::FileMissing, QLatin1String(missingText) + QLatin1Char(' ') + path,
                          {}, path.toUtf8().constData(), true);
        return;
    }
    QString error;
    config.readConfig(path, error, table);
    if (!error.isEmpty()) log.warning().noquote() << error;
    if (!error.isEmpty()) observe::diagnose(DiagnosticKind::FileRejected, error, {}, nullptr, true);
}

} // namespace

HDRConfig::HDRConfig() = default;
HDRConfig::~HDRConfig() = default;

QString HDRConfig::optionFilePath(const QString& fileName) {
    const QString share = QDir::cleanPath(QDir::currentPath() + QLatin1String("/../share"));
    const QString config = QDir::cleanPath(share + QLatin1String("/config"));
    return config + QLatin1String("/func/hdr/") + fileName;
}

void HDRConfig::initInputConfig() {
    const observe::Record r(RecordKind::HdrTable, 0);
    initTable(*this, kInputFile, "HDR input config file is not exist,file name:", m_inputConfig,
              LCD_LOG_SITE);
}

void HDRConfig::initOutputConfig() {
    const observe::Record r(RecordKind::HdrTable, 1);
    initTable(*this, kOutputFile, "HDR output config file is not exist,file name:", m_outputConfig,
              LCD_LOG_SITE);
}

bool HDRConfig::readConfig(const QString& path, QString& error, HDROptionTable& out) {
    QDomDocument doc;
    if (!loadDocument(path, Loader{kHdrFile, nullptr, LCD_LOG_SITE}, doc, error)) return false;
    forEachChild(doc.documentElement(), "Key", [&](const QDomElement& key) { parseKeyValueInfo(key, out); });
    return true;
}

void HDRConfig::parseKeyValueInfo(const QDomElement& key, HDROptionTable& out) {
    const HDRKey k{intAttr(key, "Type"), intAttr(key, "Value")};
    const observe::Record r(RecordKind::HdrKey, std::size_t(k.type), key, k.value);
    forEachChild(key, "ValueInfo", [&](const QDomElement& info) {
        std::map<int, std::list<int>>& dependents = out[k];
        const int type = intAttr(info, "Type");
        const observe::Record setting(RecordKind::HdrSetting, std::size_t(type), info);
        std::list<int> values;
        forEachChild(info, "SupportValue", [&](const QDomElement& v) {
            const observe::Record value(RecordKind::HdrValue, values.size(), v);
            values.push_back(intText(v));
        });
        dependents.emplace(type, std::move(values)); // the first list of a type wins
    });
}

std::map<int, std::list<int>> HDRConfig::getCanSelectedValues(const HDRKey& key, int configType) {
    const HDROptionTable* table = configType == HDRInputConfig    ? &m_inputConfig
                                  : configType == HDROutputConfig ? &m_outputConfig
                                                                  : nullptr;
    if (!table) return {};
    const auto it = table->find(key);
    return it == table->end() ? std::map<int, std::list<int>>{} : it->second;
}

int HDRConfig::autoToActualForBitDepth(int value, int actual) {
    return resolveAuto(value, actual, kBitDepthFallback);
}

int HDRConfig::autoToActualForColorGamut(int value, int actual) {
    return resolveAuto(value, actual, kColorGamutFallback);
}

int HDRConfig::autoToActualForDynamicRange(int value, int actual) {
    return resolveAuto(value, actual, kDynamicRangeFallback);
}

QHash<int, const char*> HDRConfig::getbitDepthEnum() {
    static const QHash<int, const char*> table = textTable(kBitDepthTexts);
    return table;
}

QHash<int, const char*> HDRConfig::getColorSpaceString() {
    static const QHash<int, const char*> table = textTable(kColorSpaceTexts);
    return table;
}

QHash<int, const char*> HDRConfig::getColorGamutString() {
    static const QHash<int, const char*> table = textTable(kColorGamutTexts);
    return table;
}

QHash<int, const char*> HDRConfig::getDynamicRangeString() {
    static const QHash<int, const char*> table = textTable(kDynamicRangeTexts);
    return table;
}

QHash<int, QString> HDRConfig::getKeyValue(int type, const std::list<int>& values) {
    switch (type) {
    case HDRBitDepth:
        return getKeyValue(getbitDepthEnum(), values);
    case HDRDynamicRange:
        return getKeyValue(getDynamicRangeString(), values);
    case HDRColorGamut:
        return getKeyValue(getColorGamutString(), values);
    default: // the colour space table is never chosen here
        return {};
    }
}

QHash<int, QString> HDRConfig::getKeyValue(const QHash<int, const char*>& table,
                                           const std::list<int>& values) {
    QHash<int, QString> texts;
    for (int value : values) {
        const auto it = table.constFind(value);
        if (it != table.constEnd() && !texts.contains(value)) texts.insert(value, QString::fromUtf8(*it));
    }
    return texts;
}

} // namespace ConfigModel
} // namespace LCD
