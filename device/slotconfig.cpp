#include "device/slotconfig.h"
