#include "tools/lcdcfg/cli.h"
namespace lcdcfg {
int runLsp(const QStringList&) { return kUsage; }
}
