#pragma once

// The rules of `lcdcfg check` beyond the cross-file ones of rules.cpp, one
// function each, listed with their codes in the one rule table (rules.cpp).

#include "tools/lcdcfg/rules.h"

namespace lcdcfg {

// rules_values.cpp: ranges and field widths, duplicates, names
void rangeInverted(RuleRun& run);
void valueOutOfRange(RuleRun& run);
void sizeNotPositive(RuleRun& run);
void fieldOverflow(RuleRun& run);
void slotDuplicate(RuleRun& run);
void keyDuplicate(RuleRun& run);
void screenTypeDuplicate(RuleRun& run);
void layerTypeDuplicate(RuleRun& run);
void hdrValueDuplicate(RuleRun& run);
void crosscardCardDuplicate(RuleRun& run);
void templateNameMissing(RuleRun& run);
void functionNameMissing(RuleRun& run);

// rules_references.cpp: ids a file names that the model or the tree lacks
void connectorGroupUnknown(RuleRun& run);
void crosscardSlotUnknown(RuleRun& run);
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
// The attribute `name` as read on the element of `site`, or null.
const AttributeTrace* readOf(const Trace& trace, const Site* site, const QString& name);

} // namespace lcdcfg
