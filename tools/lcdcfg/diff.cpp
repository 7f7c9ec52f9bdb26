// lcdcfg diff: what changed between two configuration trees, in the records'
// terms. Both trees are dumped as records.h does; the dumps are compared as
// trees in which lists of records are matched by their identifying field
// (models by modelId, connectors by type or position, slots by index, menu
// items by key, resolutions by width x height @ refresh rate), so that an
// inserted slot is one added slot and not a shifted list.

#include <QtCore/QJsonDocument>

#include "tools/lcdcfg/cli.h"
#include "tools/lcdcfg/records.h"
#include "tools/lcdcfg/session.h"

namespace lcdcfg {

namespace {

struct Change {
    QString kind; // "added", "removed", "changed"
    QString path; // JSON path with list members by id: devices/models/29974/slot/...
    QString text; // the sentence
    QJsonValue before;
    QJsonValue after;
};

// Where a comparison is: the list members entered so far ("model 29974"),
// and the fields walked since the last of them.
struct Place {
    QStringList members;
    QStringList fields;
    QString path;

    Place field(const QString& name) const {
        Place p = *this;
        p.fields << name;
        p.path += QLatin1Char('/') + name;
        return p;
    }
    Place member(const QString& label, const QString& id) const {
        Place p = *this;
        QStringList walked = fields;
        walked.removeLast(); // the list's name: the label says it
        if (members.isEmpty() && walked == QStringList{QStringLiteral("devices")}) walked.clear();
        if (!walked.isEmpty()) p.members << walked.join(QLatin1Char('.'));
        p.fields.clear();
        p.members << label;
        p.path += QLatin1Char('/') + id;
        return p;
    }
    // "model 29974, slot.slots.mixCardSlots" and the last field apart.
    QString where(bool withLastField) const {
        QStringList parts = members;
        const QStringList f = withLastField ? fields : QStringList(fields.mid(0, fields.size() - 1));
        if (!f.isEmpty()) parts << f.join('.');
        return parts.join(QStringLiteral(", "));
    }
};

// "standardResolutions" -> "standard resolution".
QString labelOf(const QString& list, int depth) {
    if (depth == 1 && list == QLatin1String("models")) return QStringLiteral("model");
    if (depth == 0 && list == QLatin1String("connectors")) return QStringLiteral("connector type");
    if (depth == 0 && list == QLatin1String("cards")) return QStringLiteral("card");
    if (list == QLatin1String("children")) return QStringLiteral("item");
    QString words;
    for (const QChar c : list)
        words += c.isUpper() ? QStringLiteral(" ") + c.toLower() : QString(c);
    if (words.endsWith(QLatin1Char('s')) && !words.endsWith(QLatin1String("ss"))) words.chop(1);
    return words;
}

QString scalarText(const QJsonValue& v) {
    switch (v.type()) {
    case QJsonValue::String:
        return QLatin1Char('"') + v.toString() + QLatin1Char('"');
    case QJsonValue::Double:
        return QString::number(v.toDouble(), 'g', 12);
    case QJsonValue::Bool:
        return v.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        return QStringLiteral("none");
    case QJsonValue::Array:
        return QStringLiteral("a list");
    case QJsonValue::Object:
        return QStringLiteral("a record");
    }
    return QString();
}

QString idText(const QJsonValue& v) {
    if (!v.isObject()) return scalarText(v).remove(QLatin1Char('"'));
    QStringList parts;
    const QJsonObject o = v.toObject();
    for (auto it = o.begin(); it != o.end(); ++it)
        parts << idText(it.value());
    return parts.join(QLatin1Char('/'));
}

// A resolution's id: 3840x2160@60, 1920x1080i@50.
QString resolutionId(const QJsonObject& o) {
    QString id = QStringLiteral("%1x%2")
                     .arg(o[QLatin1String("width")].toInt())
                     .arg(o[QLatin1String("height")].toInt());
    if (o[QLatin1String("interlaced")].toInt() == 1) id += QLatin1Char('i');
    if (o.contains(QLatin1String("refreshRate")))
        id += QLatin1Char('@') + QString::number(o[QLatin1String("refreshRate")].toDouble() *
                                                     o[QLatin1String("coefficient")].toDouble(),
                                                 'g', 6);
    else if (o.contains(QLatin1String("refreshs")))
        id += QLatin1Char('@') + idText(o[QLatin1String("refreshs")].toArray().first());
    return id;
}

const char* const kIdFields[] = {"modelId",  "deviceModelId", "moduleId", "type",  "index",
                                 "position", "key",           "groupId",  "value", "id"};

// The ids of a list's members by one rule for both lists, or empty lists
// when no rule gives unique ids to both (then members pair by position).
bool idsOf(const QJsonArray& a, const QJsonArray& b, QStringList* ia, QStringList* ib) {
    const auto tryRule = [&](auto rule) {
        QStringList x, y;
        for (const QJsonValue& v : a)
            x << rule(v);
        for (const QJsonValue& v : b)
            y << rule(v);
        if (x.contains(QString()) || y.contains(QString()) || x.removeDuplicates() || y.removeDuplicates())
            return false;
        *ia = x;
        *ib = y;
        return true;
    };
    const QJsonValue sample = a.isEmpty() ? b.first() : a.first();
    if (!sample.isObject() && !sample.isArray())
        return tryRule(
            [](const QJsonValue& v) { return v.isObject() || v.isArray() ? QString() : idText(v); });
    if (sample.toObject().contains(QLatin1String("width")) &&
        sample.toObject().contains(QLatin1String("height")))
        return tryRule([](const QJsonValue& v) { return resolutionId(v.toObject()); });
    for (const char* field : kIdFields)
        if (tryRule([field](const QJsonValue& v) {
                const QJsonValue id = v.toObject().value(QLatin1String(field));
                return id.isUndefined() || id.isArray() ? QString() : idText(id);
            }))
            return true;
    return false;
}

class Differ {
public:
    QVector<Change> changes;

    void compare(const QJsonValue& a, const QJsonValue& b, const Place& at) {
        if (a == b) return;
        if (a.isObject() && b.isObject()) return objects(a.toObject(), b.toObject(), at);
        if (a.isArray() && b.isArray()) return lists(a.toArray(), b.toArray(), at);
        changes << Change{
            QStringLiteral("changed"), at.path,
            QStringLiteral("%1: %2 %3 -> %4")
                .arg(at.where(false), at.fields.value(at.fields.size() - 1), scalarText(a), scalarText(b)),
            a, b};
    }

private:
    void objects(const QJsonObject& a, const QJsonObject& b, const Place& at) {
        QStringList keys = a.keys() + b.keys();
        keys.removeDuplicates();
        keys.sort();
        for (const QString& key : keys)
            compare(a.value(key), b.value(key), at.field(key));
    }

    void lists(const QJsonArray& a, const QJsonArray& b, const Place& at) {
        const QString label = labelOf(at.fields.last(), at.members.size() + at.fields.size() - 1);
        QStringList ia, ib;
        if (!idsOf(a, b, &ia, &ib)) {
            for (int i = 0; i < qMax(a.size(), b.size()); ++i) {
                const QString id = QString::number(i + 1);
                member(i < a.size() ? a[i] : QJsonValue(QJsonValue::Undefined),
                       i < b.size() ? b[i] : QJsonValue(QJsonValue::Undefined), at,
                       label + QStringLiteral(" #") + id, id);
            }
            return;
        }
        for (int i = 0; i < ia.size(); ++i) {
            const int j = ib.indexOf(ia[i]);
            member(a[i], j < 0 ? QJsonValue(QJsonValue::Undefined) : b[j], at,
                   label + QLatin1Char(' ') + ia[i], ia[i]);
        }
        for (int i = 0; i < ib.size(); ++i)
            if (!ia.contains(ib[i]))
                member(QJsonValue::Undefined, b[i], at, label + QLatin1Char(' ') + ib[i], ib[i]);
        QStringList common;
        for (const QString& id : ia)
            if (ib.contains(id)) common << id;
        QStringList commonAfter;
        for (const QString& id : ib)
            if (ia.contains(id)) commonAfter << id;
        if (common != commonAfter)
            changes << Change{QStringLiteral("changed"), at.path,
                              QStringLiteral("%1: order of %2s %3 -> %4")
                                  .arg(at.where(false), label, common.join(QLatin1Char(' ')),
                                       commonAfter.join(QLatin1Char(' '))),
                              QJsonValue(QJsonValue::Undefined), QJsonValue(QJsonValue::Undefined)};
    }

    // One member of a list in either tree (Undefined when it is not there).
    void member(const QJsonValue& a, const QJsonValue& b, const Place& list, const QString& label,
                const QString& id) {
        const Place at = list.member(label, id);
        if (a.isUndefined() || b.isUndefined()) {
            Place outer = at;
            outer.members.removeLast();
            const QString where = outer.where(true);
            changes << Change{a.isUndefined() ? QStringLiteral("added") : QStringLiteral("removed"), at.path,
                              QStringLiteral("%1%2 %3").arg(
                                  where.isEmpty() ? QString() : where + QStringLiteral(": "), label,
                                  a.isUndefined() ? QStringLiteral("added") : QStringLiteral("removed")),
                              a, b};
            return;
        }
        compare(a, b, at);
    }
};

// The dump of `root`; `why` gets what its loads did not read ("cards:
// FILE:LINE: TEXT" per line), so that records missing for that reason are
// not taken for removals without a word.
QJsonObject dumpOf(Session& session, const QString& root, bool* ok, QString* why) {
    const std::unique_ptr<Tree> tree = session.load(root);
    *ok = tree != nullptr;
    if (tree) *why = tree->failures();
    return tree ? dumpTree(*tree) : QJsonObject();
}

} // namespace

int runDiff(const QStringList& args) {
    CommandLine cl(QStringLiteral("diff"),
                   QStringLiteral("Prints what changed between two configuration trees, record by record "
                                  "(NEW: --root, else the default tree). Exit status 0 when they are "
                                  "equal, 1 when they differ."),
                   QStringLiteral("OLD [NEW]"));
    Session session(cl, Session::OtherPositional, Session::Json);
    int code = kClean;
    if (!session.parse(args, &code)) return code;
    QStringList roots = session.positional();
    if (roots.size() == 1) roots << session.root();
    if (roots.size() != 2 || (session.rootGiven() && session.positional().size() == 2))
        return cl.usage(QStringLiteral("OLD and NEW expected (NEW positional or --root)"));
    bool ok = false;
    QString whyBefore, whyAfter;
    const QJsonObject before = dumpOf(session, roots[0], &ok, &whyBefore);
    if (!ok) return kUsage;
    const QJsonObject after = dumpOf(session, roots[1], &ok, &whyAfter);
    if (!ok) return kUsage;
    // what a tree's loads did not read, said before the changes it explains
    for (const auto& [root, why] : {std::make_pair(roots[0], whyBefore), std::make_pair(roots[1], whyAfter)})
        for (const QString& line : why.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            err() << "lcdcfg diff: " << root << ": not everything was read: " << line << "\n";

    Differ differ;
    differ.compare(before, after, Place());
    if (session.json()) {
        QJsonArray list;
        for (const Change& c : differ.changes) {
            QJsonObject o{{QStringLiteral("kind"), c.kind},
                          {QStringLiteral("path"), c.path},
                          {QStringLiteral("text"), c.text}};
            if (!c.before.isUndefined()) o.insert(QStringLiteral("old"), c.before);
            if (!c.after.isUndefined()) o.insert(QStringLiteral("new"), c.after);
            list.append(o);
        }
        out() << QString::fromUtf8(QJsonDocument(QJsonObject{{QStringLiteral("changes"), list},
                                                             {QStringLiteral("count"), list.size()}})
                                       .toJson(QJsonDocument::Indented));
    } else {
        for (const Change& c : differ.changes)
            out() << c.text << "\n";
        if (differ.changes.isEmpty()) out() << "no differences\n";
    }
    return differ.changes.isEmpty() ? kClean : kProblems;
}

} // namespace lcdcfg
