#pragma once

// Records of the device crosscard file.

#include "lcdconfigmodel/values.h"
