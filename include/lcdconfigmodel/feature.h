#pragma once

// Records of the device feature file.

#include "lcdconfigmodel/values.h"
