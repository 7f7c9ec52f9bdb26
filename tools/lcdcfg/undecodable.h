#pragma once

// Names in a configuration tree that the file-name encoding cannot decode:
// the host's directory listings show them with U+FFFD and cannot open them,
// so `lcdcfg check` names each one, with its bytes escaped.

#include <QtCore/QString>

#include "tools/lcdcfg/problems.h"

namespace lcdcfg {

// Adds an "undecodable-name" error for every file or folder under `root`
// (recursively) whose name does not survive decoding and encoding again.
void addUndecodableNames(const QString& root, Problems& problems);

} // namespace lcdcfg
