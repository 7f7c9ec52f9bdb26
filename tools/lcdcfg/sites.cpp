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
    QVector<int> place;
    for (const Step& step : path)
        place << int(step.kind) << step.index << step.key;
    const auto it = m_records.constFind(place);
    return it == m_records.constEnd() || m_sites[*it].document.isEmpty() ? nullptr : &m_sites[*it];
}

const AttributeTrace* Trace::readAt(const Site* site, const QString& name) const {
    const DocumentTrace* d = site ? document(site->document) : nullptr;
    const auto it = d ? d->elements.constFind({site->line, site->column})
                      : QHash<Position, ElementTrace>::const_iterator();
    return d && it != d->elements.constEnd() ? it->read(name) : nullptr;
}

QVector<QPair<const Site*, const Site*>> Trace::options() const {
    QVector<QPair<const Site*, const Site*>> options;
    for (const auto& option : m_options)
        options.push_back({&m_sites[option.first], &m_sites[option.second]});
    return options;
}

QVector<const Site*> Trace::records(RecordKind kind) const {
    QVector<const Site*> sites;
    for (const auto& started : m_started)
        if (started.first == kind) sites << &m_sites[started.second];
    return sites;
}

Site& Trace::siteOf(const QDomElement& element) {
    const auto inserted = m_index.emplace(keyOf(element), m_sites.size());
    if (!inserted.second) return m_sites[inserted.first->second];
    m_documentsRead.insert(m_path);
    m_tags[element.tagName()] << m_sites.size();
    m_sites.push_back({m_path, element.tagName(), element.lineNumber(), element.columnNumber(), {}});
    return m_sites.last();
}

const Site* Trace::siteAt(const QString& document, int line, int column) const {
    const auto number = m_documentNumbers.constFind(document);
    if (number == m_documentNumbers.constEnd()) return nullptr;
    const auto it = m_index.find({*number, line, column});
    return it == m_index.end() ? nullptr : &m_sites[it->second];
}

QVector<const Site*> Trace::find(const std::function<bool(const QString&)>& document, const QString& tag,
                                 Match values) const {
    QVector<const Site*> hits;
    static const QVector<int> none;
    const auto of = m_tags.constFind(tag); // the sites of that tag
    const QVector<int>* tagged = tag.isEmpty() ? nullptr : of == m_tags.constEnd() ? &none : &*of;
    for (int i = 0, n = tagged ? int(tagged->size()) : int(m_sites.size()); i < n; ++i) {
        const Site& site = m_sites[tagged ? tagged->at(i) : i];
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
    for (const DocumentTrace& d : m_documents) {
        if (d.path != document) continue;
        const auto it = d.elements.constFind({line, column});
        if (it != d.elements.constEnd() && it->found) return true;
    }
    return false;
}

} // namespace lcdcfg
