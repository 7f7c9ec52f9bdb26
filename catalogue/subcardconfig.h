#pragma once

#include "lcdconfigmodel.h"

namespace LCD {
namespace ConfigModel {

// The card catalogue component. Loading appends to the catalogue; queries are
// linear searches over it in load order (see SubcardConfigInterface).
class LCD_CONFIGMODEL_EXPORT SubcardConfigManager : public SubcardConfigInterface {
public:
    SubcardConfigManager();
    ~SubcardConfigManager() override;

    bool readConfig(const QString& path, QString& error) override;
    const std::vector<Subcard::s_Subcard>& subcardConfig() const override;

    const Subcard::s_Connector* findConnector(int modelId, int position) override;
    const Subcard::s_ConnectorGroup* findConnectorLocatedGroup(int modelId, int position) override;
    std::vector<Subcard::s_Connector> findConnectorByGroupId(int modelId, int groupId) override;
    Subcard::s_DeviceMode findSubcardModeData(int modelId, int capacity, int deviceMode) override;
    std::vector<Subcard::s_ConnectorInfo> findConnectorCopyData(int modelId, int capacity, int deviceMode,
                                                                int position) override;
    int findCardMode(int modelId) override;
    Subcard::s_CapacityInConnectorsDeviceModeCapacitys
    findConnectorDeviceModeCapacity(int modelId, int capacity, int deviceMode) override;
    int findConnectorDeviceModeCapacityDynamicRangeSupport(int modelId, int capacity, int deviceMode,
                                                           int position) override;
    std::vector<Subcard::s_TypesConnector> findConnectorTypesData(int modelId) override;
    bool isAssociationSubcard(int modelId, int otherModelId) override;

    // The connector types of a "Types" element: every "Connector" child with
    // its preset thumbnail timings. Writes "CapacityMode Value: <n>" to the
    // debug log for every capacity mode it reads.
    Subcard::s_TypesGroups analyzeConnectTyps(const QDomElement& types);

private:
    const Subcard::s_Subcard* firstCard(int modelId) const;

    std::vector<Subcard::s_Subcard> m_subcards;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::SubcardConfigManager)
