#pragma once

// The one header a host includes: the plug-in entry points and host framework
// types, the shared value records, every component interface with its records,
// and the shared constants and enumerations.
//
// Builds with or without Qt's keywords (signals, slots, emit); records have
// fields named `slots`.

// Qt first, so that its keyword macros are defined before we hide them.
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QPair>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtXml/QDomElement>

#pragma push_macro("slots")
#pragma push_macro("signals")
#undef slots
#undef signals

#include "lcdconfigmodel/export.h"
#include "lcdconfigmodel/kvc.h"
#include "lcdconfigmodel/values.h"

#include "lcdconfigmodel/constants.h"
#include "lcdconfigmodel/enums.h"

#include "lcdconfigmodel/crosscard.h"
#include "lcdconfigmodel/device.h"
#include "lcdconfigmodel/feature.h"
#include "lcdconfigmodel/layer.h"
#include "lcdconfigmodel/screen.h"
#include "lcdconfigmodel/slot.h"

#include "lcdconfigmodel/connector.h"
#include "lcdconfigmodel/hdr.h"
#include "lcdconfigmodel/keycheck.h"
#include "lcdconfigmodel/menu.h"
#include "lcdconfigmodel/printkeyno.h"
#include "lcdconfigmodel/subcard.h"

#pragma pop_macro("signals")
#pragma pop_macro("slots")
