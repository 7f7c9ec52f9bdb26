// Linked into every test: with LCD_TEST_OBSERVER set (CTest runs every test
// a second time so), a checking observer is attached to every load of the
// run. It stops the test when a reported number is not what QString::toInt
// gives for the text read, a missing lookup has no parent, a record ends
// that was not the last one started (or one read from an element has none),
// or a diagnostic has no text (a missing element: no name).

#include <QtCore/QByteArray>
#include <QtCore/QVector>
#include <QtCore/QtGlobal>

#include "common/loadobserver.h"

namespace {

using namespace LCD::ConfigModel;

class CheckingObserver : public LoadObserver {
public:
    void elementMissing(const QDomElement& parent, const char* name) override {
        if (parent.isNull() || !name) qFatal("observer: a missing lookup without parent or name");
    }
    void recordStarted(const RecordRead& r) override {
        if (r.element.isNull() && r.kind != RecordKind::Model && r.kind != RecordKind::HdrTable)
            qFatal("observer: record %d without its element", int(r.kind));
        records() << r.kind;
    }
    void recordEnded(RecordKind kind) override {
        if (records().isEmpty() || records().takeLast() != kind)
            qFatal("observer: record %d ended out of order", int(kind));
    }
    void diagnostic(const LoadDiagnostic& d) override {
        if (d.text.isEmpty()) qFatal("observer: diagnostic %d without text", int(d.kind));
        if (d.kind == DiagnosticKind::ElementMissing && !d.name)
            qFatal("observer: a missing element without its name");
    }
    void attributeRead(const AttributeRead& r) override {
        if (r.element.isNull() || !r.name || !r.def)
            qFatal("observer: an attribute read without element or name");
        if (!r.present && !r.raw.isEmpty()) qFatal("observer: text for the absent attribute %s", r.name);
        if (r.kind != ReadKind::Int) return;
        bool ok = false;
        const int expected = (r.present ? r.raw : QString::fromLatin1(r.def)).toInt(&ok);
        if (r.stored != QString::number(expected) || r.validNumber != ok)
            qFatal("observer: %s='%s' stored as %s (valid %d), QString::toInt gives %d (valid %d)", r.name,
                   qPrintable(r.raw), qPrintable(r.stored), int(r.validNumber), expected, int(ok));
    }

private:
    // Records nest per thread: the singleton test parses on several at once.
    static QVector<RecordKind>& records() {
        static thread_local QVector<RecordKind> started;
        return started;
    }
};

struct Attach {
    CheckingObserver observer;
    Attach() {
        if (!qEnvironmentVariableIsEmpty("LCD_TEST_OBSERVER")) setLoadObserver(&observer);
    }
    ~Attach() {
        if (loadObserver() == &observer) setLoadObserver(nullptr);
    }
} g_attach;

} // namespace
