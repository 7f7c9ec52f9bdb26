#pragma once

// The checks of `lcdcfg check`, for every verb that lists a tree's problems.

#include "tools/lcdcfg/problems.h"
#include "tools/lcdcfg/trace.h"
#include "tools/lcdcfg/tree.h"

namespace lcdcfg {

class RuleRun;

// Loads `tree` (not yet loaded) as the host does, then each card, connector
// and menu file on its own so that every bad file is named, and runs the
// cross-file rules on what the components loaded. Adds every problem, with
// its position, to `problems` (sorted). false only when the tree cannot be
// loaded at all (`tree.error()` says why); the components stay loaded.
bool checkTree(Tree& tree, Problems& problems);
// The same for a tree already loaded with `trace` attached, so that a verb
// that records the load for itself does not load the tree twice.
void checkTree(Tree& tree, const Trace& trace, Problems& problems);
// What checkTree() lists before the rules' findings, for `run`'s tree and
// trace: what the library told as it loaded, the files after a bad one
// loaded on their own, a menu tree not read, undecodable names. Notes on
// `run` the ids the host loses.
void checkLoads(Tree& tree, RuleRun& run, Problems& problems);
// The warnings of `lcdcfg lint` for a tree loaded with `trace` attached; what
// the readers look for comes from `vocabulary`.
void lintTree(const Tree& tree, const Trace& trace, const Vocabulary& vocabulary, Problems& problems);
// The same for one document of such a load.
void lintDocument(const Tree& tree, const DocumentTrace& document, const Vocabulary& vocabulary,
                  Problems& problems);
// What the readers looked for in one document, added to `vocabulary`
// (Vocabulary::add of a trace adds this for each of its documents).
void addDocument(Vocabulary& vocabulary, const DocumentTrace& document);

} // namespace lcdcfg
