#include "device/crosscardconfig.h"
