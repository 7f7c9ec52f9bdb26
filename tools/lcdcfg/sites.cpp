// The site index of the recording observer: where each record and value
// was read, and the views the rules ask for.

#include "tools/lcdcfg/trace.h"

namespace lcdcfg {

using namespace LCD::ConfigModel;

QHash<QString, int> Trace::firstIds(RecordKind kind, const QString& id) const {
    QHash<QString, int> first;
    for (const Site* site : records(kind))
        if (!first.contains(site->document)) first.insert(site->document, site->values.value(id).toInt());
    return first;
}

QHash<QString, int> Trace::cardDocuments() const {
    return firstIds(RecordKind::Card, QStringLiteral("ModelId"));
}

QHash<QString, int> Trace::connectorDocuments() const {
    return firstIds(RecordKind::ConnectorDescription, QStringLiteral("Type"));
}

const Site* Trace::record(const RecordPath& path) const {
    int place = -1;
    for (const Step& step : path)
        if ((place = m_places.find({place, int(step.kind), step.index, step.key})) < 0) return nullptr;
    const int at = place < 0 ? -1 : m_placeSites[place];
    return at < 0 || entry(at).site.document.isEmpty() ? nullptr : &entry(at).site;
}

int Trace::entryAt(const QString& document, int line, int column) const {
    const int number = m_documentNumbers.value(document, -1);
    return number < 0 ? -1 : m_index.find({number, line, column});
}

const AttributeTrace* Trace::readAt(const Site* site, const QString& name) const {
    if (!site) return nullptr;
    const int at = site->values.m_trace == this ? site->values.m_entry
                                                : entryAt(site->document, site->line, site->column);
    return at >= 0 && entry(at).isTrace ? entry(at).trace.read(name) : nullptr;
}

QVector<QPair<const Site*, const Site*>> Trace::options() const {
    QVector<QPair<const Site*, const Site*>> options;
    for (const auto& option : m_options)
        options.push_back({&entry(option.first).site, &entry(option.second).site});
    return options;
}

QVector<const Site*> Trace::records(RecordKind kind) const {
    QVector<const Site*> sites;
    for (const auto& started : m_started)
        if (started.first == kind) sites << &entry(started.second).site;
    return sites;
}

const Site* Trace::siteAt(const QString& document, int line, int column) const {
    const int at = entryAt(document, line, column);
    return at >= 0 && entry(at).isSite ? &entry(at).site : nullptr;
}

QVector<const Site*> Trace::find(const std::function<bool(const QString&)>& document, const QString& tag,
                                 Match values) const {
    QVector<const Site*> hits;
    const QVector<int>* sites = &m_sites;
    if (!tag.isEmpty()) { // the sites of that tag
        const int number = m_tagNumbers.value(tag, -1);
        if (number < 0) return hits;
        sites = &m_tagged[number];
    }
    for (int i : *sites) {
        const Site& site = entry(i).site;
        if (!document(site.document)) continue;
        bool all = true;
        for (const auto& value : values)
            all = all && site.values.value(QLatin1String(value.first)) == value.second &&
                  site.values.contains(QLatin1String(value.first));
        if (all) hits << &site;
    }
    return hits;
}

const Missing* Trace::lastMissing(const QString& document, const QString& name) const {
    for (auto it = m_missing.rbegin(); it != m_missing.rend(); ++it)
        if (it->document == document && it->name == name) return &*it;
    return nullptr;
}

bool Trace::found(const QString& document, int line, int column) const {
    for (const DocumentTrace& d : m_documents)
        if (d.path == document)
            if (const ElementTrace* t = d.elements.find({line, column}); t && t->found) return true;
    return false;
}

} // namespace lcdcfg
