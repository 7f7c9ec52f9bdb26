#include "device/screenconfig.h"
