#pragma once

// The plug-in record and the table of the seven component descriptors.

#include "lcdconfigmodel/kvc.h"

// The descriptor table, null-terminated: device registry, card catalogue,
// connector catalogue, menu, HDR options, key-check list, print-key numbers.
extern const kvc::ComponentInfo* const lcdconfigmodelplugin_kvc_componentInfoTable[8];
