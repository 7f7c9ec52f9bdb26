#pragma once

// Records of the device screen file.

#include "lcdconfigmodel/values.h"
