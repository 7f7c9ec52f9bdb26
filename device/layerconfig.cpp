#include "device/layerconfig.h"
