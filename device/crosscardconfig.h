#pragma once

#include "lcdconfigmodel.h"
