// Replays inputs through the fuzz target without libFuzzer: every file of the
// directories given as arguments, in name order. A crash, a sanitizer report
// or a hang of the test is the failure; finding no input at all is one too.

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv) {
    int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        const QDir dir(QString::fromLocal8Bit(argv[i]));
        for (const QFileInfo& entry : dir.entryInfoList(QDir::Files, QDir::Name)) {
            QFile file(entry.filePath());
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(entry.filePath()));
                return 1;
            }
            const QByteArray input = file.readAll();
            std::printf("%s\n", qPrintable(entry.fileName()));
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(input.constData()),
                                   static_cast<size_t>(input.size()));
            ++replayed;
        }
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 ? 0 : 1;
}
