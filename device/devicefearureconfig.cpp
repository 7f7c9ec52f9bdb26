#include "device/devicefearureconfig.h"
