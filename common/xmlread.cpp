#include "common/xmlread.h"

#include <QtCore/QDebug>

#include <atomic>
#include <cstring>

namespace LCD {
namespace ConfigModel {
namespace xml {

namespace {

// A lookup's result, reported to the observer: the element, or the parent
// and the name asked for when there is none.
inline QDomElement visited(QDomElement e, const QDomElement& parent, const char* name) {
    if (LoadObserver* o = observe::current(); Q_UNLIKELY(o)) {
        if (!e.isNull())
            o->elementFound(e);
        else if (name && !parent.isNull())
            o->elementMissing(parent, name);
    }
    return e;
}

inline QDomElement visited(QDomElement e) {
    if (LoadObserver* o = observe::current(); Q_UNLIKELY(o) && !e.isNull()) o->elementFound(e);
    return e;
}

inline void textWasRead(const QDomElement& e) {
    if (LoadObserver* o = observe::current(); Q_UNLIKELY(o) && !e.isNull()) o->textRead(e);
}

// Attribute and tag names as QString, built once per name: the vocabulary
// is called with string literals, so a name is looked up by its address (and
// its text checked, in case an address is reused for another name). Slots are
// claimed once and never change afterwards; a full table or a slot being
// filled by another thread falls back to a temporary.
QString interned(const char* name) {
    struct Slot {
        std::atomic<const char*> key{nullptr};
        QString text;
    };
    constexpr size_t kSlots = 1024;
    static const char claimed = 0;
    static Slot slots[kSlots];
    const size_t start = (reinterpret_cast<quintptr>(name) >> 1) % kSlots;
    for (size_t probe = 0; probe < 16; ++probe) {
        Slot& s = slots[(start + probe) % kSlots];
        const char* key = s.key.load(std::memory_order_acquire);
        if (!key && s.key.compare_exchange_strong(key, &claimed, std::memory_order_acq_rel)) {
            s.text = QString::fromLatin1(name);
            s.key.store(name, std::memory_order_release);
            return s.text;
        }
        if (key == name && s.text == QLatin1String(name)) return s.text;
        if (key == &claimed) break;
    }
    return QString::fromLatin1(name);
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

inline Found find(const QDomElement& e, const char* name) {
    // attributeNode() only looks: it is not const in Qt 5 for no reason of its own
    const QDomAttr a = const_cast<QDomElement&>(e).attributeNode(interned(name));
    if (a.isNull()) return {false, QString()};
    return {true, a.value()};
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

template <class T, class Convert>
T number(const QDomElement& e, const char* name, const char* def, ReadKind kind, Convert&& convert) {
    const Found found = find(e, name);
    bool ok = true;
    const T v = convert(found.present ? found.raw : QString::fromLatin1(def), &ok);
    reported(e, name, def, kind, found, v, ok);
    return v;
}

// The field of a range-like record that an attribute name fills.
template <class R> qint32* rangeField(R& r, const char* name) {
    if (std::strcmp(name, "Support") == 0) return &r.support;
    if (std::strcmp(name, "Editable") == 0) return &r.editable;
    if (std::strcmp(name, "DataType") == 0) return &r.dataType;
    if constexpr (!std::is_same_v<R, s_TextRange>) {
        if (std::strcmp(name, "Value") == 0) return &r.value;
    }
    if constexpr (!std::is_same_v<R, s_ValueSetting> && !std::is_same_v<R, s_OptionList>) {
        if (std::strcmp(name, "Min") == 0) return &r.min;
        if (std::strcmp(name, "Max") == 0) return &r.max;
    }
    return nullptr;
}

template <class R> void readShape(const QDomElement& e, Attrs attrs, R& out) {
    for (const Attr& a : attrs) {
        if constexpr (std::is_same_v<R, s_TextRange>) {
            if (std::strcmp(a.name, "Value") == 0) {
                out.text = textAttr(e, a.name, a.def);
                continue;
            }
        }
        qint32* field = rangeField(out, a.name);
        Q_ASSERT_X(field, "readShape", a.name);
        if (field) *field = intAttr(e, a.name, a.def);
    }
}

} // namespace

QDomElement child(const QDomElement& parent, const char* name) {
    if (parent.isNull()) return {};
    return visited(name ? parent.firstChildElement(interned(name)) : parent.firstChildElement(), parent,
                   name);
}

QDomElement firstChild(const QDomElement& parent) {
    return child(parent, nullptr);
}

QDomElement next(const QDomElement& element) {
    return visited(element.nextSiblingElement());
}

QDomElement nextNamed(const QDomElement& element, const char* name) {
    return visited(element.nextSiblingElement(interned(name)));
}

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

qint32 intAttr(const QDomElement& e, const char* name, const char* def) {
    const Found found = find(e, name);
    bool ok = true;
    const qint32 v = found.present ? decimal(found.raw, &ok) : decimal(def, &ok);
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

std::string utf8(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return std::string(bytes.constData(), static_cast<size_t>(bytes.size()));
}

std::string text(const QDomElement& e) {
    textWasRead(e);
    return utf8(e.text());
}

std::string firstNodeText(const QDomElement& e) {
    textWasRead(e);
    return utf8(e.firstChild().nodeValue());
}

void readInts(const QDomElement& e, std::initializer_list<IntField> fields) {
    for (const IntField& f : fields)
        *f.field = intAttr(e, f.name, f.def);
}

s_SupportInfo readPair(const QDomElement& e, const char* supportDef, const char* editableDef) {
    s_SupportInfo pair;
    pair.support = intAttr(e, "Support", supportDef);
    pair.editable = intAttr(e, "Editable", editableDef);
    return pair;
}

s_RangeValue readRange(const QDomElement& e, Attrs attrs) {
    s_RangeValue r;
    readShape(e, attrs, r);
    return r;
}

s_ValueSetting readValueSetting(const QDomElement& e, Attrs attrs) {
    s_ValueSetting r;
    readShape(e, attrs, r);
    return r;
}

s_TextRange readTextRange(const QDomElement& e, Attrs attrs) {
    s_TextRange r;
    readShape(e, attrs, r);
    return r;
}

s_OptionList readOptions(const QDomElement& e, Attrs attrs, ListFrom list) {
    s_OptionList r;
    readShape(e, attrs, r);
    r.values = readValues<EnumValue>(e, list);
    return r;
}

std::vector<qint32> readValueList(const QDomElement& e, ListFrom list) {
    std::vector<qint32> values;
    if (list == ListFrom::None) return values;
    forEachRepeated(e, list == ListFrom::EnumFirst ? "Enum" : nullptr,
                    [&](const QDomElement& item) { values.push_back(intAttr(item, "Value")); });
    return values;
}

std::vector<s_RangeValue> readRangeList(const QDomElement& e, Attrs attrs) {
    std::vector<s_RangeValue> list;
    forEachChild(e, [&](const QDomElement& item) { list.push_back(readRange(item, attrs)); });
    return list;
}

void readRangeLenient(const QDomElement& e, s_RangeValue& out) {
    if (e.isNull()) return;
    readShape(e, kLenient, out);
}

void readPairLenient(const QDomElement& e, s_SupportInfo& out) {
    if (e.isNull()) return;
    out = readPair(e, "1", "1");
}

bool readRangeStrict(const QDomElement& parent, const char* tag, s_RangeValue& out, QString& error,
                     std::initializer_list<const char*> order) {
    const QDomElement e = child(parent, tag);
    if (e.isNull()) {
        error = QStringLiteral("Invalid [%1] node.").arg(QLatin1String(tag));
        return false;
    }
    readRangeAttrs(e, out, order);
    return true;
}

Section::Section(QString& error, const Loader& loader) : m_error(error), m_loader(loader) {}

Children::Children(const QDomElement& parent) : m_parent(parent) {
    for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        const QString tag = e.tagName();
        if (!m_first.contains(tag)) m_first.insert(tag, e);
    }
}

QDomElement Children::operator()(const char* name) const {
    if (m_parent.isNull()) return {};
    return visited(m_first.value(interned(name)), m_parent, name);
}

QDomElement Section::need(const QDomElement& parent, const char* name) {
    return m_complete ? found(child(parent, name), name, false) : QDomElement();
}

QDomElement Section::need(const Children& parent, const char* name) {
    return m_complete ? found(parent(name), name, false) : QDomElement();
}

QDomElement Section::needLogged(const QDomElement& parent, const char* name) {
    return m_complete ? found(child(parent, name), name, true) : QDomElement();
}

void Section::fail(const QString& name) {
    if (!m_complete) return;
    m_complete = false;
    m_error = m_loader.invalidNode(name);
}

QDomElement Section::found(const QDomElement& e, const char* name, bool logged) {
    if (e.isNull()) {
        fail(QLatin1String(name));
        if (logged)
            QMessageLogger(m_loader.site.file, m_loader.site.line, m_loader.site.function).warning().noquote()
                << "Log:" << m_error;
    }
    return e;
}

QString elementText(const QDomElement& e) {
    textWasRead(e);
    return e.text();
}

qint32 intText(const QDomElement& e) {
    textWasRead(e);
    return decimal(e.text(), nullptr);
}

void update(const QDomElement& e, Attrs attrs, s_RangeValue& out) {
    if (!e.isNull()) readShape(e, attrs, out);
}

void update(const QDomElement& e, Attrs attrs, s_TextRange& out) {
    if (!e.isNull()) readShape(e, attrs, out);
}

void update(const QDomElement& e, Attrs attrs, ListFrom list, s_OptionList& out) {
    if (e.isNull()) return;
    readShape(e, attrs, out);
    if (list != ListFrom::None) out.values = readValues<EnumValue>(e, list);
}

void updateInts(const QDomElement& e, std::initializer_list<IntField> fields) {
    if (!e.isNull()) readInts(e, fields);
}

double doubleAttr(const QDomElement& e, const char* name, const char* def) {
    return number<double>(e, name, def, ReadKind::Double,
                          [](const QString& t, bool* ok) { return t.toDouble(ok); });
}

QDomElement expect(const QDomElement& parent, const char* name, QString& error, const Loader& loader) {
    QDomElement e = child(parent, name);
    if (e.isNull()) error = loader.invalidNode(QLatin1String(name));
    return e;
}

QDomElement childAt(const QDomElement& parent, int position) {
    QDomElement e = firstChild(parent);
    for (; position > 0 && !e.isNull(); --position)
        e = next(e);
    return e;
}

void readOptionsLenient(const QDomElement& e, s_OptionList& out, ListFrom list) {
    if (e.isNull()) return;
    out = readOptions(e, kLenientOptions, list);
}

void forEachChildByTag(const QDomElement& parent, std::initializer_list<TagHandler> handlers) {
    forEachChild(parent, [&](const QDomElement& e) {
        const QString tag = e.tagName();
        for (const TagHandler& h : handlers) {
            if (tag == QLatin1String(h.tag)) {
                h.read(e);
                return;
            }
        }
    });
}

QDomElement childReported(const QDomElement& parent, const char* name, QString& error, const Loader& loader) {
    Section section(error, loader);
    return section.needLogged(parent, name);
}

bool isNamed(const QDomElement& e, const char* name) {
    return !e.isNull() && e.tagName() == QLatin1String(name);
}

void readRangeAttrs(const QDomElement& e, s_RangeValue& out, std::initializer_list<const char*> names) {
    if (e.isNull()) return;
    for (const char* name : names) {
        qint32* field = rangeField(out, name);
        Q_ASSERT_X(field, "readRangeAttrs", name);
        if (field) *field = intAttr(e, name);
    }
}

} // namespace xml
} // namespace ConfigModel
} // namespace LCD
