#include "common/loadobserver.h"

namespace LCD {
namespace ConfigModel {

namespace observe {
LoadObserver* g_current = nullptr;
} // namespace observe

LoadObserver::~LoadObserver() = default;
void LoadObserver::documentStarted(const QString&) {}
void LoadObserver::documentParsed(const DocumentRead&) {}
void LoadObserver::documentRejected(const QDomElement&, const QString&) {}
void LoadObserver::elementFound(const QDomElement&) {}
void LoadObserver::elementMissing(const QDomElement&, const char*) {}
void LoadObserver::attributeRead(const AttributeRead&) {}
void LoadObserver::textRead(const QDomElement&) {}

void setLoadObserver(LoadObserver* observer) {
    observe::g_current = observer;
}

LoadObserver* loadObserver() {
    return observe::g_current;
}

} // namespace ConfigModel
} // namespace LCD
