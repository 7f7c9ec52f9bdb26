// Built without QT_NO_KEYWORDS: the public header must not trip over Qt's
// "slots" and "signals" macros, and the host's own classes may still use them.
#include <lcdconfigmodel.h>

class HostObject : public QObject {
public slots:
    void onLoaded() {}
signals:
};

// A host that keeps the keywords names the records' `slots` fields with the
// macro pushed away.
#pragma push_macro("slots")
#undef slots
static int addInputSlot(LCD::ConfigModel::Slot::s_VrnSolt& record, int index) {
    record.slots.inputCardSlots.slots.push_back({index, {}});
    return static_cast<int>(record.slots.inputCardSlots.slots.size());
}
#pragma pop_macro("slots")

int main() {
    LCD::ConfigModel::Slot::s_VrnSolt record;
    return addInputSlot(record, 1) == 1 ? 0 : 1;
}
