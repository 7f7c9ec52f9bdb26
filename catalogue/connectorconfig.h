#pragma once

#include "lcdconfigmodel.h"

#include <QtXml/QDomElement>

namespace LCD {
namespace ConfigModel {

// Reads the connector catalogue: a resolution file (first element
// "ResolutionRatios") and connector files (first element "Connectors"), and
// answers the queries of ConnectorConfigInterface from them. Nothing is cleared
// between loads: connector files are appended, the resolution catalogue and the
// interface table are replaced.
class LCD_CONFIGMODEL_EXPORT ConnectorConfigManager : public ConnectorConfigInterface {
public:
    ConnectorConfigManager();
    ~ConnectorConfigManager() override;

    bool readConfig(const QString& path, QString& error) override;

    const Connector::s_ConnectorHDCP* findHDCPInfo(int connectorType) const override;
    const Connector::s_ConnectorEDID* findEDIDInfo(int connectorType) const override;
    const Connector::s_ConnectorDynamicRange* findDynamicRangeInfo(int connectorType) const override;
    const Connector::s_ConnectorColorDepths* findColorDepthsInfo(int connectorType) const override;
    const Connector::s_ConnectorHDR* findHDRInfo(int connectorType) const override;
    const std::vector<Connector::s_CapacityModeInInterface>*
    findResoluCapacityMode(int connectorType) const override;
    const Connector::s_ConnectorColorSpaces* findColorSpacesInfo(int connectorType) const override;
    const Connector::s_ConnectorResolutionRatios*
    findConnectorResolutionRatios(int capacityMode, int connectorType, int interfaceType) const override;
    const Connector::s_ConnectorResolutionRatio*
    findConnectorDefaultResolution(int capacityMode, int connectorType, int interfaceType) const override;
    const Connector::s_ConnectorAdvResolutionRatio*
    findConnectorDefaultAdvResolution(int capacityMode, int connectorType, int interfaceType) const override;
    Connector::s_resolutionResolutionRatioArray
    findConnectorStandardResolution(int capacityMode, int connectorType, int interfaceType) const override;
    Connector::s_resolutionResolutionRatioArray findConnectorResolutions(int capacityMode, int connectorType,
                                                                         int interfaceType) const override;
    Connector::s_resolutionResolutionRatioArray
    findSDIConnectorResolutionRatios(int capacityMode, int connectorType, int interfaceType) const override;
    Connector::s_resolutionResolutionRatio findSDIConnectorResolutions(int width, int height, int interlaced,
                                                                       int capacityMode, int connectorType,
                                                                       int interfaceType,
                                                                       int reserved) const override;
    Connector::s_ConnectorRefreshSet findConnectorRates(int connectorType, int timingType) const override;
    Connector::s_PreSetTimingInterface findConnectorTiming(int connectorType, int timingType) const override;
    Connector::s_ConnectorHDCP findConnectorHDCP(int connectorType) const override;

    // The resolutions of the "Types" group when `interfaceType` is its type
    // value; empty otherwise.
    Connector::s_resolutionResolutionRatioArray findInterfaceInterlacedResolu(int interfaceType) const;

    // Reads the standard resolution catalogue of a "ResolutionRatios" element
    // into `out` (all three fields replaced). false only for a null element.
    static bool readConfigResolution(const QDomElement& resolutionRatios, Connector::s_VrnResolution& out);

    // Reads one connector description. false: `error` holds "Invalid [%1] node."
    // for the first missing required element and `out` is left as it was.
    static bool readConfigConnector(const QDomElement& connector, QString& error,
                                    Connector::s_ConnectorCfg& out);

    // Strict range readers: the child `tag` of `parent` must exist, else
    // `error` is "Invalid [%1] node." and the result false. All six attributes
    // are read with an empty default (absent gives 0); `step` is not touched.
    static bool getAttribute(s_RangeValue& out, const QDomElement& parent, const QLatin1String& tag,
                             QString& error);
    static bool getRGB(s_RangeValue& out, const QDomElement& parent, const QLatin1String& tag,
                       QString& error);

    // What was loaded, for tools and tests.
    const Connector::s_VrnResolution& resolution() const { return m_resolution; }
    const std::vector<Connector::s_Connector>& connectors() const { return m_connectors; }
    const std::vector<Connector::s_VrnConnector>& connectorFiles() const { return m_connectorFiles; }

private:
    // The capacity mode entry a resolution block belongs to, or null.
    const Connector::s_CapacityModeInInterface*
    entryHolding(const Connector::s_ConnectorResolutionRatios* r) const;

    Connector::s_VrnResolution m_resolution;
    std::vector<Connector::s_Connector> m_connectors;
    std::vector<Connector::s_VrnConnector> m_connectorFiles;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::ConnectorConfigManager)
