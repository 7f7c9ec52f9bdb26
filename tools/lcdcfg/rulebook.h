#pragma once

// The rules of `lcdcfg check` beyond the cross-file ones of rules.cpp, one
// function each, listed with their codes in the one rule table (rules.cpp).

#include <QtCore/QFileInfo>

#include "tools/lcdcfg/rules.h"

namespace lcdcfg {

// rules_values.cpp: ranges and field widths, duplicates, names
void ranges(RuleRun& run); // range-inverted, range-value-outside, range-size-empty
void optionsUnlisted(RuleRun& run);
void fieldOverflow(RuleRun& run);
void slotDuplicate(RuleRun& run);
void screenTypeDuplicate(RuleRun& run);
void layerTypeDuplicate(RuleRun& run);
void hdrValueDuplicate(RuleRun& run);
void keyDuplicate(RuleRun& run);
void printkeyCardDuplicate(RuleRun& run);
void crosscardCardDuplicate(RuleRun& run);
void connectorPositionDuplicate(RuleRun& run);
void connectorTypeDuplicate(RuleRun& run);
void resolutionDuplicate(RuleRun& run);
void shownNameMissing(RuleRun& run);

// rules_references.cpp: ids a file names that the model or the tree lacks
void connectorGroupUnknown(RuleRun& run);
void crosscardSlotUnknown(RuleRun& run);
void crosscardConnectorUnknown(RuleRun& run);
void printkeyPositionUnknown(RuleRun& run);
void layerTypeUnknown(RuleRun& run);
void associationUnknown(RuleRun& run);
void elementReadAs(RuleRun& run);

// rules_files.cpp: file placement, encodings, unclosed elements
void modelDirUnnamed(RuleRun& run);
void modelFileMissing(RuleRun& run);
void fileMisplaced(RuleRun& run);
void fileKindAmbiguous(RuleRun& run);
void encodingMismatch(RuleRun& run);
void textUndecodable(RuleRun& run);
void entityUnknown(RuleRun& run);
void elementUnclosed(RuleRun& run);

// Helpers the rule files share.
// The sub-folders of the device folder (none when the devices were not
// loaded), by name.
QFileInfoList modelFolders(const RuleRun& run);
// The elements of the records of `kind` below `above`, in their order.
QVector<const Site*> recordsOf(const Trace& trace, const RecordPath& above,
                               LCD::ConfigModel::RecordKind kind);
// Ids with the record each was read into, in reading order.
using Item = QPair<QString, RecordPath>;
// Reports every repetition of an id ("card model %1") after its first, naming the first.
void repeats(RuleRun& run, const QVector<Item>& items, const QString& fallback, const QString& what,
             const QString& consequence);
// The attribute `name` as read on the element of `site`, or null.
const AttributeTrace* readOf(const Trace& trace, const Site* site, const QString& name);

} // namespace lcdcfg
