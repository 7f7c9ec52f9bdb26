#include "common/loadobserver.h"

namespace LCD {
namespace ConfigModel {

namespace observe {
LoadObserver* g_current = nullptr;
} // namespace observe

void setLoadObserver(LoadObserver* observer) {
    observe::g_current = observer;
}

LoadObserver* loadObserver() {
    return observe::g_current;
}

} // namespace ConfigModel
} // namespace LCD

extern "C" void lcdSetLoadObserver(LCD::ConfigModel::LoadObserver* observer) {
    LCD::ConfigModel::setLoadObserver(observer);
}
