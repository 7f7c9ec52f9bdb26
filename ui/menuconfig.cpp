#include "ui/menuconfig.h"

#include "common/facts.h"

#include <QtCore/QDebug>

#include <algorithm>
#include <deque>
#include <memory>
#include <vector>

#include "common/xmlread.h"

KVC_REGISTER_COMPONENT(LCD::ConfigModel::MenuConfigManager,
                       LCD::ConfigModel::facts::component(LCD::ConfigModel::facts::Component::Menu).id)

namespace LCD {
namespace ConfigModel {

using namespace xml;

namespace {

// Frees a node and everything below it, without recursion.
void freeTree(s_MenuItem* top) {
    std::vector<s_MenuItem*> pending{top};
    while (!pending.empty()) {
        s_MenuItem* node = pending.back();
        pending.pop_back();
        if (!node) continue;
        pending.insert(pending.end(), node->children.cbegin(), node->children.cend());
        delete node;
    }
}

struct TreeDeleter {
    void operator()(s_MenuItem* node) const { freeTree(node); }
};
// A node (with what is below it) that no parent holds yet.
using OwnedNode = std::unique_ptr<s_MenuItem, TreeDeleter>;

} // namespace

MenuConfigManager::MenuConfigManager() : m_pRootMenuItem(new s_MenuItem) {}

MenuConfigManager::~MenuConfigManager() {
    freeTree(m_pRootMenuItem);
    qDeleteAll(m_listMenuFCItem);
}

bool MenuConfigManager::readMenuItems(const QString& path, QString& error) {
    QDomDocument doc;
    if (!loadDocument(path, Loader{kMenuFile, nullptr, LCD_LOG_SITE}, doc, error)) return false;

    const QDomElement menuBar = child(doc.documentElement(), "MenuBar");
    if (menuBar.isNull()) return true;
    parseElement(child(menuBar), m_pRootMenuItem);
    qDebug().noquote() << "parseElement finished";
    return true;
}

bool MenuConfigManager::readMenuFCItems(const QString& path, QString& error) {
    QDomDocument doc;
    if (!loadDocument(path, Loader{kMenuFile, nullptr, LCD_LOG_SITE}, doc, error)) return false;

    forEachChild(child(doc.documentElement(), "MenuItems"), "MenuItem", [this](const QDomElement& e) {
        const observe::Record r(RecordKind::MenuFunction, std::size_t(m_listMenuFCItem.size()), e);
        auto item = std::make_unique<s_MenuFCItem>();
        item->icon = attr(e, "Icon");
        item->key = intAttr(e, "Key");
        item->type = intAttr(e, "Type"); // absent gives 0, not the record's -1
        item->unit = attr(e, "Unit");
        const QDomElement name = child(e, "Name");
        if (!name.isNull()) {
            item->name.insert(QStringLiteral("en"), elementText(child(name, "en")));
            item->name.insert(QStringLiteral("zh_CN"), elementText(child(name, "zh_CN")));
        }
        m_listMenuFCItem.append(item.get());
        item.release();
    });
    return true;
}

void MenuConfigManager::parseElement(const QDomElement& element, s_MenuItem* item) {
    // Depth first with an explicit stack, so no tree can exhaust the call
    // stack. A level fills its node, then reads its child elements one by one;
    // a child node is appended to its parent once its own subtree is read.
    struct Level {
        QDomElement element;
        s_MenuItem* item;
        OwnedNode owned;        // the node until its parent takes it; null for `item` itself
        observe::Record record; // ends when the level is left
        QDomElement child;
        bool started = false;
    };
    std::vector<Level> levels;
    const auto enter = [this, &levels](const QDomElement& e, s_MenuItem* node, OwnedNode owned) {
        const std::size_t index = levels.empty() ? 0 : std::size_t(levels.back().item->children.size());
        observe::Record record =
            e.isNull() ? observe::Record() : observe::Record(RecordKind::MenuItem, index, e);
        if (!e.isNull()) {
            node->key = intAttr(e, "Key");
            node->order = intAttr(e, "Order", "0");
            node->fcItem = findMenuFCItem(node->key);
        }
        levels.push_back(Level{e, node, std::move(owned), std::move(record), {}});
    };

    enter(element, item, nullptr);
    while (!levels.empty()) {
        Level& level = levels.back();
        level.child = level.started ? next(level.child) : child(level.element);
        level.started = true;
        if (!level.child.isNull()) {
            OwnedNode node(new s_MenuItem);
            node->parent = level.item;
            s_MenuItem* const raw = node.get();
            enter(QDomElement(level.child), raw, std::move(node)); // `level` dangles from here on
            continue;
        }
        OwnedNode done = std::move(level.owned);
        levels.pop_back();
        if (done) {
            levels.back().item->children.append(done.get());
            done.release();
        }
    }
}

s_MenuItem* MenuConfigManager::rootMenuItem() const {
    return m_pRootMenuItem;
}

s_MenuItem* MenuConfigManager::findMenuItem(int key) const {
    std::deque<s_MenuItem*> queue{m_pRootMenuItem};
    while (!queue.empty()) {
        s_MenuItem* const node = queue.front();
        queue.pop_front();
        if (!node) return nullptr; // a null entry ends the search
        if (node->key == key) return node;
        queue.insert(queue.end(), node->children.cbegin(), node->children.cend());
    }
    return nullptr;
}

QList<s_MenuItem*> MenuConfigManager::findChidItemsByKey(int key) {
    if (!m_pRootMenuItem) {
        qWarning().noquote() << "The m_pRootMenuItem is null";
        return {};
    }
    if (m_pRootMenuItem->key == key) return m_pRootMenuItem->children;
    QList<s_MenuItem*> out;
    findChidMenuItems(m_pRootMenuItem->children, key, out);
    return out;
}

void MenuConfigManager::findChidMenuItems(QList<s_MenuItem*> items, int key, QList<s_MenuItem*>& out) {
    // The recursive walk, with the pending levels on an explicit stack: each
    // level is a list and the position of its next node.
    struct Level {
        QList<s_MenuItem*> items;
        int next;
    };
    std::vector<Level> levels{Level{std::move(items), 0}};
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.next >= level.items.size()) {
            levels.pop_back();
            continue;
        }
        const s_MenuItem* const node = level.items.at(level.next++);
        if (!node) continue;
        if (node->key == key) {
            out = node->children;
            levels.pop_back(); // a hit ends its own level; upper levels go on
            continue;
        }
        levels.push_back(Level{node->children, 0});
    }
}

bool MenuConfigManager::isSiblingItem(int key, int otherKey) {
    const s_MenuItem* const node = findMenuItem(key);
    if (!node || !node->parent) return false;
    const QList<s_MenuItem*> siblings = findChidItemsByKey(node->parent->key);
    return std::any_of(siblings.cbegin(), siblings.cend(),
                       [otherKey](const s_MenuItem* s) { return s && s->key == otherKey; });
}

int MenuConfigManager::findChidItemSizeByKey(int key) {
    return findChidItemsByKey(key).size();
}

s_MenuFCItem* MenuConfigManager::findMenuFCItem(int key) const {
    const auto hit = std::find_if(m_listMenuFCItem.cbegin(), m_listMenuFCItem.cend(),
                                  [key](const s_MenuFCItem* item) { return item && item->key == key; });
    return hit == m_listMenuFCItem.cend() ? nullptr : *hit;
}

} // namespace ConfigModel
} // namespace LCD
