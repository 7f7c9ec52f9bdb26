#pragma once

#include "lcdconfigmodel.h"

#include <QtXml/QDomElement>

namespace LCD {
namespace ConfigModel {

// Reads the two HDR option files (root "Kalmir") into the input and output
// tables and answers from them. Created empty; the init operations read.
class LCD_CONFIGMODEL_EXPORT HDRConfig : public IHDRConfig {
public:
    HDRConfig();
    ~HDRConfig() override;

    std::map<int, std::list<int>> getCanSelectedValues(const HDRKey& key, int configType) override;
    void initInputConfig() override;
    void initOutputConfig() override;
    int autoToActualForBitDepth(int value, int actual) override;
    int autoToActualForColorGamut(int value, int actual) override;
    int autoToActualForDynamicRange(int value, int actual) override;
    QHash<int, const char*> getColorSpaceString() override;
    QHash<int, const char*> getColorGamutString() override;
    QHash<int, const char*> getDynamicRangeString() override;
    QHash<int, QString> getKeyValue(int type, const std::list<int>& values) override;

    // Reads one option file and merges its keys into `out`. false: `error`
    // holds the reason and `out` is untouched.
    bool readConfig(const QString& path, QString& error, HDROptionTable& out);
    // Merges one key element into `out`: the first list of a dependent type
    // wins; a key without "ValueInfo" adds nothing.
    void parseKeyValueInfo(const QDomElement& key, HDROptionTable& out);
    // Display text of each bit depth (255 "AUTO").
    QHash<int, const char*> getbitDepthEnum();
    // The texts of `values` found in `table`, each number once.
    QHash<int, QString> getKeyValue(const QHash<int, const char*>& table, const std::list<int>& values);

    // Where an option file is looked for: <working directory>/../share,
    // normalised, then /config/func/hdr/<fileName>.
    static QString optionFilePath(const QString& fileName);

private:
    HDROptionTable m_inputConfig;
    HDROptionTable m_outputConfig;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::HDRConfig)
