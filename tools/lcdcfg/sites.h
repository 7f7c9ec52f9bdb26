#pragma once

// Where things were read: a load observer that remembers, per document, every
// element whose attributes or text a reader took (with the values stored),
// every child lookup that found nothing, numbers that did not convert,
// attributes and elements written a letter or two off the name looked for,
// and how each document was parsed.
// Records carry no positions; a rule finds the element an id came from here.

#include <QtCore/QHash>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtCore/QVector>

#include <functional>
#include <initializer_list>
#include <utility>

#include "common/loadobserver.h"

namespace lcdcfg {

// One element a reader took values from.
struct Site {
    QString document; // absolute, as the tree reports it
    QString tag;
    int line = 0;
    int column = 0;
    QHash<QString, QString> values; // attributes read, as stored (defaults too); "#text" for the text
};

// A child lookup that found nothing: at the parent, with the missing path.
struct Missing {
    QString document;
    int line = 0;
    int column = 0;
    QString name; // the missing child
    QString path; // e.g. "Vrn/Device"
    // A child of the parent whose name is one or two letters off, when
    // there is one: the element the author probably meant.
    QString near;
    int nearLine = 0;
    int nearColumn = 0;
};

// An attribute read as absent where the element has one a letter or two away.
struct NearAttribute {
    QString document;
    int line = 0;
    int column = 0;
    QString name; // looked for
    QString near; // written
};

// A document that could not be opened, parsed, or whose root was refused.
struct DocumentFailure {
    QString document;
    int line = 0;
    int column = 0;
    QString error;
    bool rejected = false; // parsed, but the root check failed
};

// A number attribute whose text does not convert: the reader stored `stored`.
struct BadNumber {
    QString document;
    int line = 0;
    int column = 0;
    QString name;
    QString raw;
    QString stored;
};

class Sites : public LCD::ConfigModel::LoadObserver {
public:
    const QVector<Site>& sites() const { return m_sites; }
    const QVector<Missing>& missing() const { return m_missing; }
    const QVector<DocumentFailure>& failures() const { return m_failures; }
    const QVector<BadNumber>& badNumbers() const { return m_badNumbers; }
    const QVector<NearAttribute>& nearAttributes() const { return m_nearAttributes; }
    // The site of the element at this place, or null.
    const Site* siteAt(const QString& document, int line, int column) const;

    // Every site whose document satisfies `document`, whose tag is `tag` (any
    // when empty) and that holds every (name, value) pair, in reading order.
    using Match = std::initializer_list<std::pair<const char*, QString>>;
    QVector<const Site*> find(const std::function<bool(const QString&)>& document, const QString& tag,
                              Match values) const;
    // The latest lookup of `name` that failed in `document`, or null.
    const Missing* lastMissing(const QString& document, const QString& name) const;
    // Whether a reader reached the element at this place.
    bool found(const QString& document, int line, int column) const;

    void documentStarted(const QString& path) override;
    void documentParsed(const LCD::ConfigModel::DocumentRead& read) override;
    void documentRejected(const QDomElement& root, const QString& error) override;
    void elementFound(const QDomElement& element) override;
    void elementMissing(const QDomElement& parent, const char* name) override;
    void attributeRead(const LCD::ConfigModel::AttributeRead& read) override;
    void textRead(const QDomElement& element) override;

private:
    Site& siteOf(const QDomElement& element);

    QString m_document;
    QVector<Site> m_sites;
    QHash<QString, int> m_index; // "document:line:column" to its site
    QSet<QString> m_found;       // "document:line:column" of every element reached
    QVector<Missing> m_missing;
    QVector<DocumentFailure> m_failures;
    QVector<BadNumber> m_badNumbers;
    QVector<NearAttribute> m_nearAttributes;
};

} // namespace lcdcfg
