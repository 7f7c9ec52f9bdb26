// The public headers alone, built into a small shared object with every type
// they declare in its debug information (-fno-eliminate-unused-debug-types):
// the ABI fixture rows compare this object built against include/ with the
// same object built against a patched copy of include/.
#include "lcdconfigmodel.h"

// An object with no exported symbol has no ABI to read.
extern "C" Q_DECL_EXPORT int lcd_abi_probe() {
    return 0;
}
