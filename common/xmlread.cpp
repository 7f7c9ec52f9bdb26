#include "common/xmlread.h"

#include <QtCore/QDebug>

#include <atomic>
#include <cstring>
#include <iterator>

namespace LCD {
namespace ConfigModel {
namespace xml {

namespace {

// A lookup's result, reported to the observer: the element, or the parent
// and the name asked for when there is none. The callers return the element
// they hold (a QDomNode copy costs two atomic counts).
inline void visited(const QDomElement& e, const QDomElement& parent, const char* name) {
    if (LoadObserver* o = observe::current(); Q_UNLIKELY(o)) {
        if (!e.isNull())
            o->elementFound(e);
        else if (name && !parent.isNull())
            o->elementMissing(parent, name);
    }
}

inline void visited(const QDomElement& e) {
    if (LoadObserver* o = observe::current(); Q_UNLIKELY(o) && !e.isNull()) o->elementFound(e);
}

inline void textWasRead(const QDomElement& e, ReadKind kind = ReadKind::Text) {
    if (LoadObserver* o = observe::current(); Q_UNLIKELY(o) && !e.isNull()) o->textRead(e, kind);
}

// Attribute and tag names as QString, built once per name: the vocabulary
// is called with string literals, so a name is looked up by its address (and
// its text checked, in case an address is reused for another name). Slots are
// claimed once and never change afterwards; a full table or a slot being
// filled by another thread falls back to a per-thread temporary, valid until
// the next call on that thread.
const QString& interned(const char* name) {
    struct Slot {
        std::atomic<const char*> key{nullptr};
        QString text;
        QByteArray latin; // the text as it was given, for the check
    };
    constexpr size_t kSlots = 1024;
    static const char claimed = 0;
    static Slot slots[kSlots];
    const size_t start = (reinterpret_cast<quintptr>(name) >> 1) % kSlots;
    for (size_t probe = 0; probe < 16; ++probe) {
        Slot& s = slots[(start + probe) % kSlots];
        const char* key = s.key.load(std::memory_order_acquire);
        if (!key && s.key.compare_exchange_strong(key, &claimed, std::memory_order_acq_rel)) {
            s.latin = QByteArray(name);
            s.text = QString::fromLatin1(s.latin);
            s.key.store(name, std::memory_order_release);
            return s.text;
        }
        if (key == name && std::strcmp(s.latin.constData(), name) == 0) return s.text;
        if (key == &claimed) break;
    }
    thread_local QString fallback;
    fallback = QString::fromLatin1(name);
    return fallback;
}

// The common shape of a decimal attribute, an optional '-' and one to nine
// ASCII digits, converted in place; false for anything else (blanks, '+',
// long or empty texts), which then goes through QString::toInt.
template <class Char> bool plainDecimal(const Char* p, qsizetype n, qint32* out) {
    qsizetype i = 0;
    if (n > 0 && p[0] == Char('-')) i = 1;
    if (n - i < 1 || n - i > 9) return false;
    qint32 v = 0;
    for (; i < n; ++i) {
        const unsigned d = unsigned(p[i]) - unsigned('0');
        if (d > 9) return false;
        v = v * 10 + qint32(d);
    }
    *out = p[0] == Char('-') ? -v : v;
    return true;
}

// One attribute looked up once: whether it is there and its text.
struct Found {
    bool present;
    QString raw;
};

// Stands for an absent attribute: attribute() hands this very text back
// (shared, so recognised by its data), which no attribute of a document shares.
const QString& absentMark() {
    static const QString mark = QStringLiteral("\xFFFF absent");
    return mark;
}

inline Found find(const QDomElement& e, const char* name) {
    const QString& mark = absentMark();
    QString raw = e.attribute(interned(name), mark);
    if (raw.constData() == mark.constData()) return {false, QString()};
    return {true, std::move(raw)};
}

// Tells the observer how one attribute was read: its text, the default, the
// value stored and whether a number converted cleanly.
template <class T>
void reported(const QDomElement& e, const char* name, const char* def, ReadKind kind, const Found& found,
              const T& stored, bool valid) {
    LoadObserver* o = observe::current();
    if (Q_LIKELY(!o) || e.isNull()) return;
    AttributeRead read;
    read.element = e;
    read.name = name;
    read.present = found.present;
    read.raw = found.raw;
    read.def = def;
    read.kind = kind;
    if constexpr (std::is_same_v<T, QString>)
        read.stored = stored;
    else if constexpr (std::is_same_v<T, bool>)
        read.stored = stored ? QStringLiteral("1") : QStringLiteral("0");
    else
        read.stored = QString::number(stored);
    read.validNumber = valid;
    o->attributeRead(read);
}

// A default converted straight from its characters when it is empty or a
// plain non-negative decimal (what every table writes), as QString's
// conversion would convert it; anything else goes through QString.
template <class T, class Convert> T fromDefault(const char* def, bool* ok, Convert&& convert) {
    if (!*def) {
        *ok = false;
        return T(0);
    }
    qint32 v;
    if (*def != '-' && plainDecimal(def, qsizetype(std::strlen(def)), &v)) {
        *ok = true;
        return T(v);
    }
    return convert(QString::fromLatin1(def), ok);
}

template <class T, class Convert>
T number(const QDomElement& e, const char* name, const char* def, ReadKind kind, Convert&& convert) {
    const Found found = find(e, name);
    bool ok = true;
    const T v = found.present ? convert(found.raw, &ok) : fromDefault<T>(def, &ok, convert);
    reported(e, name, def, kind, found, v, ok);
    return v;
}

std::string utf8(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
}

} // namespace

QDomElement child(const QDomElement& parent, const char* name) {
    if (parent.isNull()) return {};
    QDomElement e = name ? parent.firstChildElement(interned(name)) : parent.firstChildElement();
    visited(e, parent, name);
    return e;
}

QDomElement next(const QDomElement& element) {
    QDomElement e = element.nextSiblingElement();
    visited(e);
    return e;
}

namespace detail {
QDomElement nextNamed(const QDomElement& element, const char* name) {
    QDomElement e = element.nextSiblingElement(interned(name));
    visited(e);
    return e;
}
} // namespace detail

QString attr(const QDomElement& e, const char* name, const char* def) {
    const Found found = find(e, name);
    const QString value = found.present ? found.raw : QString::fromLatin1(def);
    reported(e, name, def, ReadKind::Text, found, value, true);
    return value;
}

bool hasAttr(const QDomElement& e, const char* name) {
    const Found found = find(e, name);
    reported(e, name, "", ReadKind::Presence, found, found.present, true);
    return found.present;
}

namespace detail {
qint32 decimal(const QString& text, bool* ok) {
    qint32 v;
    if (plainDecimal(reinterpret_cast<const ushort*>(text.constData()), text.size(), &v)) {
        if (ok) *ok = true;
        return v;
    }
    return text.toInt(ok);
}

qint32 decimal(const char* text, bool* ok) {
    qint32 v;
    if (plainDecimal(text, qsizetype(std::strlen(text)), &v)) {
        if (ok) *ok = true;
        return v;
    }
    return QString::fromLatin1(text).toInt(ok);
}
} // namespace detail

qint32 intAttr(const QDomElement& e, const char* name, const char* def) {
    const Found found = find(e, name);
    bool ok = true;
    const qint32 v = found.present ? detail::decimal(found.raw, &ok) : detail::decimal(def, &ok);
    reported(e, name, def, ReadKind::Int, found, v, ok);
    return v;
}

quint32 uintAttr(const QDomElement& e, const char* name, const char* def) {
    return number<quint32>(e, name, def, ReadKind::UInt,
                           [](const QString& t, bool* ok) { return t.toUInt(ok); });
}

float floatAttr(const QDomElement& e, const char* name, const char* def) {
    return number<float>(e, name, def, ReadKind::Float,
                         [](const QString& t, bool* ok) { return t.toFloat(ok); });
}

std::string textAttr(const QDomElement& e, const char* name, const char* def) {
    const Found found = find(e, name);
    if (Q_UNLIKELY(observe::current()))
        reported(e, name, def, ReadKind::Text, found, found.present ? found.raw : QString::fromLatin1(def),
                 true);
    return found.present ? utf8(found.raw) : std::string(def);
}

std::string firstNodeText(const QDomElement& e) {
    textWasRead(e);
    return utf8(e.firstChild().nodeValue());
}

namespace detail {

void store(const QDomElement& e, const Attr& a, qint32* out) {
    *out = intAttr(e, a.name, a.def);
}

void store(const QDomElement& e, const Attr& a, qint64* out) {
    *out = intAttr(e, a.name, a.def);
}

void store(const QDomElement& e, const Attr& a, float* out) {
    *out = floatAttr(e, a.name, a.def);
}

void store(const QDomElement& e, const Attr& a, double* out) {
    *out = doubleAttr(e, a.name, a.def);
}

void store(const QDomElement& e, const Attr& a, std::string* out) {
    *out = textAttr(e, a.name, a.def);
}

void store(const QDomElement& e, const Attr& a, quint16* out) {
    *out = attr(e, a.name, a.def).toUShort();
}

} // namespace detail

Section::Section(QString& error, const Loader& loader) : m_error(error), m_loader(loader) {}

Children::Children(const QDomElement& parent) : m_parent(parent) {
    for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        const QString tag = e.tagName();
        if (!m_first.contains(tag)) m_first.insert(tag, e);
    }
}

QDomElement Children::operator()(const char* name) const {
    if (m_parent.isNull()) return {};
    QDomElement e = m_first.value(interned(name));
    visited(e, m_parent, name);
    return e;
}

QDomElement Section::need(const QDomElement& parent, const char* name, Missing missing) {
    const bool ends = missing == Missing::Ends || missing == Missing::EndsLogged;
    return m_complete || !ends ? found(child(parent, name), parent, name, missing) : QDomElement();
}

QDomElement Section::need(const Children& parent, const char* name, Missing missing) {
    const bool ends = missing == Missing::Ends || missing == Missing::EndsLogged;
    return m_complete || !ends ? found(parent(name), parent.element(), name, missing) : QDomElement();
}

void Section::fail(const QString& name) {
    if (!m_complete) return;
    m_complete = false;
    m_error = m_loader.invalidNode(name);
}

QDomElement Section::found(const QDomElement& e, const QDomElement& parent, const char* name,
                           Missing missing) {
    if (!e.isNull()) return e;
    if (missing == Missing::Ends || missing == Missing::EndsLogged)
        fail(QLatin1String(name));
    else
        m_error = m_loader.invalidNode(QLatin1String(name));
    const bool logged = missing == Missing::EndsLogged || missing == Missing::NotedLogged;
    if (!logged) {
        observe::diagnose(DiagnosticKind::ElementMissing, m_error, parent, name);
        return e;
    }
    const QString line = QLatin1String("Log: ") + m_error;
    QMessageLogger(m_loader.site.file, m_loader.site.line, m_loader.site.function).warning().noquote()
        << line;
    observe::diagnose(DiagnosticKind::ElementMissing, m_error, parent, name, true, line);
    return e;
}

QString elementText(const QDomElement& e) {
    textWasRead(e);
    return e.text();
}

qint32 intText(const QDomElement& e) {
    textWasRead(e, ReadKind::Int);
    return detail::decimal(e.text(), nullptr);
}

double doubleAttr(const QDomElement& e, const char* name, const char* def) {
    return number<double>(e, name, def, ReadKind::Double,
                          [](const QString& t, bool* ok) { return t.toDouble(ok); });
}

bool isNamed(const QDomElement& e, const char* name) {
    return !e.isNull() && e.tagName() == QLatin1String(name);
}

} // namespace xml
} // namespace ConfigModel
} // namespace LCD
