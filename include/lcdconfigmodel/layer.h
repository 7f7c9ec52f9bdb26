#pragma once

// Records of the device layer file.

#include "lcdconfigmodel/values.h"
