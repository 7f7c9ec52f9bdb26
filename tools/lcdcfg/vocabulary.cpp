// Lint's vocabulary: what the readers know of each element path, and the
// near names of a misspelling.

#include "tools/lcdcfg/check.h"
#include "tools/lcdcfg/trace.h"

#include <algorithm>

namespace lcdcfg {

using namespace LCD::ConfigModel;

// The case-insensitive edit distance of two names.
int editDistance(const QString& a, const QString& b) {
    const QString x = a.toLower();
    const QString y = b.toLower();
    QVector<int> row(y.size() + 1);
    for (int j = 0; j <= y.size(); ++j)
        row[j] = j;
    for (int i = 1; i <= x.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= y.size(); ++j) {
            const int up = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (x[i - 1] == y[j - 1] ? 0 : 1)});
            diagonal = up;
        }
    }
    return row[y.size()];
}

// A name a letter or two (for longer names) away from `wanted`, case aside.
bool nearName(const QString& name, const QString& wanted) {
    const int limit = wanted.size() < 5 ? 1 : 2;
    return name != wanted && editDistance(name, wanted) <= limit;
}

QString elementPath(const QDomElement& e) {
    QStringList tags;
    for (QDomNode n = e; n.isElement(); n = n.parentNode())
        tags.prepend(n.toElement().tagName());
    return tags.join(QLatin1Char('/'));
}

namespace {
void addOnce(QStringList& list, const QString& name) {
    if (!list.contains(name)) list << name;
}
} // namespace

void addDocument(Vocabulary& vocabulary, const DocumentTrace& d) {
    // document order, each element's path made from its parent's
    QVector<QPair<QDomElement, QString>> pending{{d.document.documentElement(), QString()}};
    while (!pending.isEmpty()) {
        const QPair<QDomElement, QString> next = pending.takeLast();
        const QDomElement& e = next.first;
        const QString& parent = next.second;
        if (e.isNull()) continue;
        const QString tag = e.tagName();
        const QString path = parent.isEmpty() ? tag : parent + QLatin1Char('/') + tag;
        if (const ElementTrace* t = d.at(e)) {
            if (t->found && !parent.isEmpty()) addOnce(vocabulary.children[parent], tag);
            for (const QString& name : t->missing)
                addOnce(vocabulary.children[path], name);
            for (const AttributeTrace& a : t->reads)
                addOnce(vocabulary.attributes[path], a.name);
        }
        for (QDomElement c = e.lastChildElement(); !c.isNull(); c = c.previousSiblingElement())
            pending.push_back({c, path});
    }
}

void Vocabulary::add(const Trace& trace) {
    for (const DocumentTrace& d : trace.documents())
        addDocument(*this, d);
}

void Vocabulary::add(const Vocabulary& other) {
    for (auto it = other.children.constBegin(); it != other.children.constEnd(); ++it)
        for (const QString& name : *it)
            addOnce(children[it.key()], name);
    for (auto it = other.attributes.constBegin(); it != other.attributes.constEnd(); ++it)
        for (const QString& name : *it)
            addOnce(attributes[it.key()], name);
}

QString closest(const QString& name, const QStringList& names) {
    QString best;
    int bestDistance = std::max(2, int(name.size()) / 3) + 1;
    for (const QString& candidate : names) {
        if (candidate == name) continue;
        const int d = editDistance(name, candidate);
        if (d < bestDistance) {
            best = candidate;
            bestDistance = d;
        }
    }
    return best;
}

} // namespace lcdcfg
