// Built without QT_NO_KEYWORDS: the public header must not trip over Qt's
// "slots" and "signals" macros, and the host's own classes may still use them.
#include <lcdconfigmodel.h>

class HostObject : public QObject {
public slots:
    void onLoaded() {}
signals:
};

int main() {
    return 0;
}
