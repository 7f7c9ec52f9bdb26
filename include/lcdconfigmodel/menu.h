#pragma once

// The operator menu: a tree of entries nested by key (menu-tree file) and, per
// key, a function item with its icon, type, unit and names (function-item file).

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QString>

#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/values.h"

namespace LCD {
namespace ConfigModel {

// One function item of the function-item file.
struct s_MenuFCItem {
    qint32 key = 0;              // "Key"
    QString icon;                // "Icon", a resource path such as ":/images/menu/screen.png"
    qint32 type = -1;            // "Type"; an item read from a file without it has 0
    QString unit;                // "Unit"
    QMap<QString, QString> name; // language code ("en", "zh_CN") to the text of that child of "Name"

    LCD_RECORD_FIELDS(s_MenuFCItem, key, icon, type, unit, name)
};

// One node of the menu tree. Nodes are linked by pointer and owned by the
// component that read them; a node is told apart by its place in the tree.
struct s_MenuItem {
    qint32 key = 0;                 // "Key"
    qint32 order = 0;               // "Order"; a position hint, stored but never used for sorting
    QList<s_MenuItem*> children;    // in document order
    s_MenuItem* parent = nullptr;   // null for the root
    s_MenuFCItem* fcItem = nullptr; // the function item of the same key when the node was read, or null
};

// Every pointer handed out (nodes, function items) stays valid until the
// component is destroyed; reading again only adds.
class LCD_CONFIGMODEL_EXPORT MenuConfigInterface {
public:
    virtual ~MenuConfigInterface() = default;

    // Reads the menu-tree file: the first child element of "MenuBar" becomes
    // the root, its descendants are added below the root's existing children
    // (reading a file twice duplicates its entries). Function items are
    // linked as the tree is read, so read the function-item file first.
    // false: `error` holds the reason; what was read before stays. A file
    // without "MenuBar" is read as empty.
    virtual bool readMenuItems(const QString& path, QString& error) = 0;
    // Appends the function items of "MenuItems": the first "MenuItem" and every
    // following sibling element, whatever its name. A file without
    // "MenuItems" adds nothing.
    virtual bool readMenuFCItems(const QString& path, QString& error) = 0;
    // The root; never null (key 0 and no children before a tree is read).
    virtual s_MenuItem* rootMenuItem() const = 0;
    // Breadth-first from the root: the shallowest node with `key`, the
    // earliest of those in document order; null when there is none.
    virtual s_MenuItem* findMenuItem(int key) const = 0;
    // A copy of the children of the node with `key`: the root when it has the
    // key, else the last hit of a depth-first walk that neither enters a hit
    // nor visits the hit's later siblings. Empty when no node has the key.
    virtual QList<s_MenuItem*> findChidItemsByKey(int key) = 0;
    // Whether `otherKey` is among the children of the parent of
    // findMenuItem(key), the parent looked up again by its key with
    // findChidItemsByKey. A key is its own sibling; false for the root and
    // for a missing key.
    virtual bool isSiblingItem(int key, int otherKey) = 0;
    // The size of findChidItemsByKey(key); 0 when no node has the key.
    virtual int findChidItemSizeByKey(int key) = 0;
    // The first function item with `key` in reading order, or null.
    virtual s_MenuFCItem* findMenuFCItem(int key) const = 0;
};

} // namespace ConfigModel
} // namespace LCD
