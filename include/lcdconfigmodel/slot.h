#pragma once

// Records of the device slot file.

#include "lcdconfigmodel/values.h"
