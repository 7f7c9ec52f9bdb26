#pragma once

#include "lcdconfigmodel.h"

#include <QtXml/QDomElement>

namespace LCD {
namespace ConfigModel {

// Reads the menu-tree file and the function-item file (root "LCD", menu-file
// texts, not translated) and answers questions about the tree. Owns every
// node and function item it read and frees them when destroyed.
class LCD_CONFIGMODEL_EXPORT MenuConfigManager : public MenuConfigInterface {
public:
    MenuConfigManager();
    ~MenuConfigManager() override;
    MenuConfigManager(const MenuConfigManager&) = delete;
    MenuConfigManager& operator=(const MenuConfigManager&) = delete;

    bool readMenuItems(const QString& path, QString& error) override;
    bool readMenuFCItems(const QString& path, QString& error) override;
    s_MenuItem* rootMenuItem() const override;
    s_MenuItem* findMenuItem(int key) const override;
    QList<s_MenuItem*> findChidItemsByKey(int key) override;
    bool isSiblingItem(int key, int otherKey) override;
    int findChidItemSizeByKey(int key) override;
    s_MenuFCItem* findMenuFCItem(int key) const override;

    // Every function item read, in reading order.
    const QList<s_MenuFCItem*>& menuFCItems() const { return m_listMenuFCItem; }

    // Fills `item` from `element` ("Key", "Order", its function item) and
    // appends a new node for every child element, whatever its name, each
    // filled the same way before it is appended. A null element adds nothing.
    void parseElement(const QDomElement& element, s_MenuItem* item);
    // The walk behind findChidItemsByKey: for each node of `items` in order, a
    // hit sets `out` to a copy of its children and ends this level; any other
    // node is searched below before the next one. The last hit wins.
    void findChidMenuItems(QList<s_MenuItem*> items, int key, QList<s_MenuItem*>& out);

private:
    s_MenuItem* m_pRootMenuItem;
    QList<s_MenuFCItem*> m_listMenuFCItem;
};

} // namespace ConfigModel
} // namespace LCD

KVC_DECLARE_COMPONENT(LCD::ConfigModel::MenuConfigManager)
