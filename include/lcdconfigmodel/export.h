#pragma once

#include <QtCore/qglobal.h>

// Symbols a host or a test may link against carry LCD_CONFIGMODEL_EXPORT; the
// rest of the library stays hidden.
#if defined(LCD_CONFIGMODEL_BUILD)
#define LCD_CONFIGMODEL_EXPORT Q_DECL_EXPORT
#else
#define LCD_CONFIGMODEL_EXPORT Q_DECL_IMPORT
#endif
