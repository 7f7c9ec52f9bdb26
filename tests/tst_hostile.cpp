// Whatever sits where a description file is expected, every loader ends
// quickly with the family's text, and the other files of a directory still
// load. Each load runs in a forked child with a time and memory limit, so a
// hang, a crash or an exhausted memory fails one row, not the run.

#include "catalogue/connectorconfig.h"
#include "catalogue/subcardconfig.h"
#include "common/document.h"
#include "common/loadobserver.h"
#include "device/deviceconfig.h"
#include "hdr/hdrconfig.h"
#include "testutil.h"
#include "ui/keycheckconfig.h"
#include "ui/menuconfig.h"
#include "ui/printkeynoconfig.h"

#include <QtCore/QDataStream>
#include <QtCore/QElapsedTimer>
#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>

#include <cerrno>
#include <cstring>
#include <functional>

#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

using namespace LCD::ConfigModel;

// Puts a hostile entry at `path`; `sample` is a good file of the kind.
using Make = std::function<void(const QString& path, const QByteArray& sample)>;
Q_DECLARE_METATYPE(Make)

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true; // the shadow memory does not fit an address-space limit
#else
constexpr bool kSanitized = false;
#endif

// ---- one load in a forked child -----------------------------------------------

// Every load of this test fits in the address space of a small device. Qt 6's
// document takes about two and a half times what Qt 5's does: a file at the
// limits (4 MiB, 250 000 elements) peaks at 240 MiB resident under Qt 5 and at
// 610 MiB resident, 740 MiB of address space under Qt 6, so Qt 6 gets 1 GiB,
// a third to spare; anything that grows faster than the file runs out of both.
constexpr qint64 kAddressSpace = qint64(QT_VERSION >= QT_VERSION_CHECK(6, 0, 0) ? 1024 : 512) << 20;

struct Limits {
    int seconds = 10;
    qint64 memory = kAddressSpace;
    bool unprivileged = false; // as "nobody" when the test runs as root
};

// What the child sent back through its pipe, or why it ended without.
struct ChildRun {
    QByteArray output;
    QString failure;
    long peakKiB = 0; // the child's largest resident set
};

ChildRun runInChild(const std::function<QByteArray()>& work, const Limits& limits) {
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0) return {{}, QStringLiteral("pipe: %1").arg(std::strerror(errno))};
    const pid_t pid = ::fork();
    if (pid < 0) return {{}, QStringLiteral("fork: %1").arg(std::strerror(errno))};
    if (pid == 0) {
        ::close(fds[0]);
        const rlimit cpu{rlim_t(limits.seconds), rlim_t(limits.seconds) + 1};
        ::setrlimit(RLIMIT_CPU, &cpu);
        if (!kSanitized) {
            const rlimit memory{rlim_t(limits.memory), rlim_t(limits.memory)};
            ::setrlimit(RLIMIT_AS, &memory);
        }
        if (limits.unprivileged && ::getuid() == 0) {
            const passwd* nobody = ::getpwnam("nobody");
            if (!nobody || ::setgid(nobody->pw_gid) != 0 || ::setuid(nobody->pw_uid) != 0) ::_exit(3);
        }
        ::alarm(unsigned(limits.seconds));
        const QByteArray out = work();
        for (qint64 sent = 0; sent < out.size();) {
            const ssize_t n = ::write(fds[1], out.constData() + sent, size_t(out.size() - sent));
            if (n <= 0 && errno != EINTR) ::_exit(4);
            sent += qMax<ssize_t>(n, 0);
        }
        ::_exit(0);
    }
    ::close(fds[1]);
    ChildRun run;
    QElapsedTimer timer;
    timer.start();
    const qint64 deadline = (limits.seconds + 5) * 1000LL; // the child's own alarm comes first
    bool timedOut = false;
    for (;;) {
        const qint64 left = deadline - timer.elapsed();
        pollfd p{fds[0], POLLIN, 0};
        const int ready = left > 0 ? ::poll(&p, 1, int(left)) : 0;
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) {
            timedOut = ready == 0;
            break;
        }
        char buffer[65536];
        const ssize_t n = ::read(fds[0], buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        run.output.append(buffer, int(n));
    }
    ::close(fds[0]);
    if (timedOut) ::kill(pid, SIGKILL);
    int status = 0;
    rusage usage{};
    while (::wait4(pid, &status, 0, &usage) < 0 && errno == EINTR) {
    }
    run.peakKiB = usage.ru_maxrss;
    if (timedOut)
        run.failure = QStringLiteral("still running after %1 s").arg(limits.seconds + 5);
    else if (WIFSIGNALED(status))
        run.failure =
            QStringLiteral("killed by signal %1 (%2)").arg(WTERMSIG(status)).arg(strsignal(WTERMSIG(status)));
    else if (WEXITSTATUS(status) != 0)
        run.failure = QStringLiteral("exited with %1").arg(WEXITSTATUS(status));
    return run;
}

// ---- the loaders of every file kind ------------------------------------------------

// A load's result: returned value, error text, every diagnostic, and whether
// the records of the directory's good file are there.
struct Outcome {
    bool ok = false;
    QString error;
    QStringList messages;
    bool othersLoaded = true;
};

QByteArray encode(const Outcome& o) {
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << o.ok << o.error << o.messages << o.othersLoaded;
    return bytes;
}

Outcome decode(const QByteArray& bytes) {
    Outcome o;
    QDataStream(bytes) >> o.ok >> o.error >> o.messages >> o.othersLoaded;
    return o;
}

QStringList* g_messages = nullptr;
void collect(QtMsgType, const QMessageLogContext&, const QString& text) {
    if (g_messages) g_messages->append(text);
}

// `path` is the file, or for a directory kind the directory; `reference` a
// directory that holds only the good file, to compare the records with.
using Load = std::function<bool(const QString& path, const QString& reference, QString& error, bool& others)>;

struct Kind {
    const char* name;
    const char* sample;   // a shipped file of this kind, under share/config
    QString fileName;     // the name the hostile entry gets
    const char* subdir;   // directory kinds: where the entry sits below the loaded path
    QStringList siblings; // element path from the root to the element repeated up to the limits
                          // (empty: no walk of its own)
    Load load;
    bool directory() const { return subdir != nullptr; }
};

Kind kind(const char* name, const char* sample, const QString& fileName, const char* subdir,
          const QStringList& siblings, Load load) {
    return {name, sample, fileName, subdir, siblings, std::move(load)};
}

// A kind read from one file, named as its sample.
Kind single(const char* name, const char* sample, const QStringList& siblings,
            std::function<bool(const QString&, QString&)> read) {
    return kind(
        name, sample, QFileInfo(sample).fileName(), nullptr, siblings,
        [read](const QString& path, const QString&, QString& error, bool&) { return read(path, error); });
}

template <class Record, class Parse> std::function<bool(const QString&, QString&)> deviceFile(Parse parse) {
    return [parse](const QString& path, QString& error) {
        Record record;
        return (DeviceTessanConfigManager().*parse)(path, error, record);
    };
}

// A directory loader; `good` tells whether what the good file brings is in
// the loaded records as it is when the file is alone.
template <class Manager, class Good> Load directory(Good good) {
    return [good](const QString& path, const QString& reference, QString& error, bool& others) {
        Manager loaded, alone;
        const bool ok = loaded.readConfig(path, error);
        QString ignored;
        others = reference.isEmpty() || (alone.readConfig(reference, ignored) && good(loaded, alone));
        return ok;
    };
}

const QList<Kind>& kinds() {
    using Device = DeviceTessanConfigManager;
    using Connectors = ConnectorConfigManager;
    static const QList<Kind> all = {
        single("feature file", "device/29974/29974_feature.xml", {"Device", "DeviceModes", "Enum"},
               deviceFile<Feature::s_DeviceFeature>(&Device::parseDeviceFeaturecfg)),
        single("slot file", "device/29974/29974_slot.xml", {"Device", "Slots", "InputCardSlots", "Slot"},
               deviceFile<Slot::s_VrnSolt>(&Device::parseDeviceSlotcfg)),
        single("cross-card file", "device/29974/29974_crosscard.xml", {"Device", "Subcards", "Subcard"},
               deviceFile<CrossCard::s_CrossSubcards>(&Device::parseDeviceCrossCardcfg)),
        single("layer file", "device/29974/29974_layer_normal.xml",
               {"Device", "Layers", "Layer", "IsInverse", "Enum"},
               deviceFile<Layercfg::s_VrnLayer>(&Device::parseDeviceLayercfg)),
        single("screen file", "device/29974/29974_screen_splice.xml",
               {"Device", "Screens", "Screen", "DeviceModes", "DeviceMode"},
               deviceFile<Screen::s_VrnScreen>(&Device::parseDeviceScreencfg)),
        // Its files are walked as the single device files are.
        kind("device directory", "device/29974/29974_feature.xml", "29974_slot.xml", "29974", {},
             directory<Device>([](const auto& loaded, const auto& alone) {
                 return loaded.DeviceConfigs().size() == 1 &&
                        loaded.DeviceConfigs()[0].feature == alone.DeviceConfigs()[0].feature;
             })),
        kind("card catalogue", "subcard/2102_dvi_4in.xml", "zero.xml", "",
             {"Subcards", "Subcard", "Connectors", "Connector"},
             directory<SubcardConfigManager>([](const auto& loaded, const auto& alone) {
                 return !loaded.subcardConfig().empty() &&
                        loaded.subcardConfig()[0] == alone.subcardConfig()[0];
             })),
        kind("connector catalogue", "connector/connector_dvi.xml", "zero.xml", "",
             {"Connectors", "Connector", "FormatMapping", "Value"},
             directory<Connectors>([](const auto& loaded, const auto& alone) {
                 return !loaded.connectorFiles().empty() &&
                        loaded.connectorFiles()[0] == alone.connectorFiles()[0];
             })),
        kind("resolution file", "connector/resolutions.xml", "zero.xml", "",
             {"ResolutionRatios", "CapacityMode", "Resolution"},
             directory<Connectors>([](const auto& loaded, const auto& alone) {
                 return loaded.resolution() == alone.resolution();
             })),
        single("menu function items", "menu/menufcitems.xml", {"MenuItems", "MenuItem"},
               [](const QString& path, QString& error) {
                   return MenuConfigManager().readMenuFCItems(path, error);
               }),
        single("menu tree", "menu/menuitems.xml", {"MenuBar", "MenuItem"},
               [](const QString& path, QString& error) {
                   return MenuConfigManager().readMenuItems(path, error);
               }),
        single("HDR option file", "func/hdr/lcdhdrinputconfig.xml", {"Key", "ValueInfo", "SupportValue"},
               [](const QString& path, QString& error) {
                   HDROptionTable table;
                   return HDRConfig().readConfig(path, error, table);
               }),
        single("key-check list", "ui/checklist.xml", {"LcdKeys", "Key"},
               [](const QString& path, QString& error) { return KeyCheckConfig().readConfig(path, error); }),
        single(
            "print key numbers", "ui/printkeynoconfig.xml", {"Device", "Subcard", "Key"},
            [](const QString& path, QString& error) { return PrintKeyNoConfig().readConfig(path, error); }),
    };
    return all;
}

Outcome loadOnce(const Kind& kind, const QString& path, const QString& reference) {
    Outcome o;
    g_messages = &o.messages;
    qInstallMessageHandler(collect);
    o.ok = kind.load(path, reference, o.error, o.othersLoaded);
    qInstallMessageHandler(nullptr);
    g_messages = nullptr;
    return o;
}

// ---- hostile entries ------------------------------------------------------------

void write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
}

Make bytes(const QByteArray& content) {
    return [content](const QString& path, const QByteArray&) { write(path, content); };
}

Make transformed(std::function<QByteArray(const QByteArray&)> f) {
    return [f](const QString& path, const QByteArray& sample) { write(path, f(sample)); };
}

Make symlinkTo(const QString& target) {
    return [target](const QString& path, const QByteArray&) {
        if (::symlink(QFile::encodeName(target).constData(), QFile::encodeName(path).constData()) != 0)
            qFatal("symlink %s", std::strerror(errno));
    };
}

// The sample with `text` inserted as the first attribute of the root.
QByteArray withRootAttribute(const QByteArray& sample, const QByteArray& text) {
    QXmlStreamReader reader(sample);
    while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::StartElement) {
    }
    const QByteArray start = '<' + reader.qualifiedName().toUtf8();
    const int at = sample.indexOf(start) + start.size();
    return sample.left(at) + ' ' + text + sample.mid(at);
}

// The sample with `declarations` namespace declarations on the root, and as
// the root's first child an element holding `elements` empty elements (at
// least one) with `attributes` attributes each: no walk reads them.
QByteArray withDense(const QByteArray& sample, int elements, int attributes, int declarations) {
    QByteArray declared;
    for (int i = 0; i < declarations; ++i)
        declared += " xmlns:p" + QByteArray::number(i) + "=\"urn:" + QByteArray::number(i) + '"';
    QByteArray element = "<e";
    for (int i = 0; i < attributes; ++i)
        element += " a" + QByteArray::number(i) + "=\"\"";
    element += "/>";
    const QByteArray text = withRootAttribute(sample, "Junk=\"\"" + declared);
    const int at = text.indexOf('>', text.indexOf("Junk=")) + 1;
    return text.left(at) + "<Junk>" + element.repeated(elements) + "</Junk>" + text.mid(at);
}

// The sample with `doctype` after its XML declaration.
QByteArray withDoctype(const QByteArray& sample, const QByteArray& doctype) {
    const int at = sample.startsWith("<?xml") ? sample.indexOf("?>") + 2 : 0;
    return sample.left(at) + doctype + sample.mid(at);
}

QByteArray utf16(const QByteArray& sample, bool byteOrderMark) {
    QString text = QString::fromUtf8(sample);
    text.replace(QLatin1String("encoding=\"UTF-8\""), QLatin1String("encoding=\"UTF-16\""));
    QByteArray out = byteOrderMark ? QByteArray("\xFF\xFE", 2) : QByteArray();
    out.append(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    return out;
}

const char kSecret[] = "secret-d0c5-6f1e";

QByteArray sampleOf(const Kind& kind) {
    QFile file(test::sharedConfig(kind.sample));
    if (!file.open(QIODevice::ReadOnly)) qFatal("cannot read %s", kind.sample);
    return file.readAll();
}

// The sample with the element at `path` replaced by as many copies of it as
// the limits allow (elements and bytes), without children and with only as
// many attributes as fit in 48 bytes.
QByteArray siblingsDocument(const QByteArray& sample, const QStringList& path) {
    QDomDocument doc = test::document(sample);
    QDomElement element = doc.documentElement();
    for (const QString& name : path)
        element = element.firstChildElement(name);
    if (element.isNull()) qFatal("no element %s", qPrintable(path.join('/')));
    QDomElement shallow = element.cloneNode(false).toElement();
    QString text;
    for (;;) {
        text.clear();
        QTextStream stream(&text);
        shallow.save(stream, -1);
        stream.flush();
        const QDomNamedNodeMap attributes = shallow.attributes();
        if (text.size() <= 48 || attributes.isEmpty()) break;
        shallow.removeAttribute(attributes.item(attributes.length() - 1).nodeName());
    }
    element.parentNode().replaceChild(doc.createComment(QStringLiteral("SIBLINGS")), element);
    const QByteArray base = doc.toByteArray(-1);
    DocumentShape shape;
    checkLimits(base, DocumentLimits(), nullptr, &shape);
    const int count = int(qMin<qint64>(kMaxDocumentElements - shape.elements,
                                       (kMaxDocumentSize - base.size()) / text.toUtf8().size()));
    return QByteArray(base).replace("<!--SIBLINGS-->", text.toUtf8().repeated(count));
}

// Counts the elements the walks reach.
struct VisitCounter : LoadObserver {
    qint64 visits = 0;
    void elementFound(const QDomElement&) override { ++visits; }
};

// CPU time of the process so far, in milliseconds: unlike the wall clock, it
// does not grow while other work has the processor.
double cpuMs() {
    timespec t{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec * 1e3 + t.tv_nsec / 1e6;
}

// A realistic document of about `bytes`: card connectors, as the shipped
// catalogue has them.
QByteArray plainDocument(qint64 bytes) {
    QByteArray doc = "<LCD version=\"1.0\"><LcdKeys>\n";
    for (int i = 0; doc.size() < bytes - 200; ++i)
        doc += "<Connector Enable=\"1\" Position=\"" + QByteArray::number(i % 8) +
               "\" Visible=\"1\" Type=\"6\"><DynamicRange Support=\"1\" Editable=\"1\" "
               "Value=\"0\"/></Connector>\n";
    return doc + "</LcdKeys></LCD>\n";
}

} // namespace

class Hostile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hostileEntries_data() {
        QTest::addColumn<Make>("make");
        QTest::addColumn<QString>("expected"); // a pattern for the error text; %1 the path; empty: loads
        const QString open = "Fail to open file \\[%1\\]!";
        const QString parse = "Parse error at line \\d+, column \\d+:\n.+";
        const QString entity =
            "Parse error at line \\d+, column \\d+:\nentity declarations are not accepted in "
            "description files";
        QTest::newRow("FIFO") << Make([](const QString& path, const QByteArray&) {
            if (::mkfifo(QFile::encodeName(path).constData(), 0644) != 0) qFatal("mkfifo");
        }) << open;
        QTest::newRow("link to /dev/zero") << symlinkTo("/dev/zero") << open;
        QTest::newRow("link to /dev/urandom") << symlinkTo("/dev/urandom") << open;
        QTest::newRow("socket") << Make([](const QString& path, const QByteArray&) {
            const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
            sockaddr_un address{};
            address.sun_family = AF_UNIX;
            qstrncpy(address.sun_path, QFile::encodeName(path).constData(), sizeof address.sun_path);
            if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) qFatal("bind");
            ::close(fd);
        }) << open;
        QTest::newRow("directory") << Make([](const QString& path, const QByteArray&) {
            QDir().mkpath(path);
        }) << open;
        QTest::newRow("dangling link") << symlinkTo("/nonexistent/description.xml") << open;
        QTest::newRow("link loop") << Make([](const QString& path, const QByteArray& sample) {
            symlinkTo(path + ".loop")(path, sample);
            symlinkTo(path)(path + ".loop", sample);
        }) << open;
        QTest::newRow("no read permission") << Make([](const QString& path, const QByteArray& sample) {
            write(path, sample);
            QFile::setPermissions(path, {});
        }) << open;
        QTest::newRow("200 MB (sparse)")
            << Make([](const QString& path, const QByteArray&) {
                   QFile file(path);
                   if (!file.open(QIODevice::WriteOnly) || !file.resize(200 << 20)) qFatal("resize");
               })
            << "Parse error at line 0, column 0:\nthe file is larger than 4 MiB; description files are read "
               "up to that size";
        QTest::newRow("empty") << bytes({})
                               << test::byQt("Parse error at line 1, column 1:\nunexpected end of file",
                                             "Parse error at line 1, column 0:\nPremature end of document.");
        QTest::newRow("binary garbage") << Make([](const QString& path, const QByteArray&) {
            QByteArray noise(65536, 0);
            QRandomGenerator generator(17);
            generator.fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
            write(path, noise);
        }) << parse;
        QTest::newRow("truncated") << transformed([](const QByteArray& sample) {
            return sample.left(sample.size() / 2);
        }) << parse;
        QTest::newRow("UTF-16 with byte-order mark")
            << transformed([](const QByteArray& sample) { return utf16(sample, true); }) << QString();
        QTest::newRow("UTF-16 without byte-order mark")
            << transformed([](const QByteArray& sample) { return utf16(sample, false); }) << QString();
        // Read as replacement characters, and as NUL characters in an
        // attribute no walk reads and in the root's text; Qt 6's parser
        // refuses both.
        QTest::newRow("invalid UTF-8")
            << transformed([](const QByteArray& sample) {
                   return withRootAttribute(sample, "Junk=\"\xC3\x28\xFF\"");
               })
            << test::byQt(
                   {}, "Parse error at line \\d+, column \\d+:\nEncountered incorrectly encoded content\\.");
        QTest::newRow("NUL bytes") << transformed([](const QByteArray& sample) {
            const QByteArray nul("\0\0", 2);
            const QByteArray text = QByteArray(sample).insert(sample.lastIndexOf('<'), nul);
            return withRootAttribute(text, "Junk=\"a" + nul + "b\"");
        }) << test::byQt({}, "Parse error at line \\d+, column \\d+:\nUnexpected ''\\.");
        QTest::newRow("3 MB attribute") << transformed([](const QByteArray& sample) {
            return withRootAttribute(sample, "Junk=\"" + QByteArray(3 << 20, 'A') + "\"");
        }) << QString();
        // The structural limits: at each one the file loads, one past it the
        // load ends before the parse (denseFiles bounds what the parse costs).
        const QString rejected = "Parse error at line \\d+, column \\d+:\n%1; the file is rejected";
        for (const int past : {0, 1}) {
            const QByteArray name = past ? " (one past the limit)" : " (at the limit)";
            QTest::newRow("attributes on an element" + name)
                << transformed([past](const QByteArray& sample) {
                       return withDense(sample, 1, kMaxElementAttributes + past, 0);
                   })
                << (past ? rejected.arg(
                               QString("element has more than %1 attributes").arg(kMaxElementAttributes))
                         : QString());
            QTest::newRow("namespace declarations" + name)
                << transformed([past](const QByteArray& sample) {
                       return withDense(sample, 1, 0, kMaxNamespaceDeclarations + past);
                   })
                << (past ? rejected.arg(QString("the file has more than %1 namespace declarations")
                                            .arg(kMaxNamespaceDeclarations))
                         : QString());
            QTest::newRow("elements" + name)
                << transformed([past](const QByteArray& sample) {
                       DocumentShape shape;
                       checkLimits(sample, DocumentLimits(), nullptr, &shape);
                       return withDense(sample, kMaxDocumentElements - shape.elements - 1 + past, 0, 0);
                   })
                << (past ? rejected.arg(
                               QString("the file has more than %1 elements").arg(kMaxDocumentElements))
                         : QString());
        }
        // Entity declarations are refused, so no entity reaches the parser.
        QTest::newRow("external entity naming a local file")
            << Make([](const QString& path, const QByteArray& sample) {
                   const QString secret = path + ".secret";
                   write(secret, kSecret);
                   const QByteArray declaration =
                       "<!DOCTYPE x [<!ENTITY e SYSTEM \"" + QFile::encodeName(secret) + "\">]>";
                   write(path, withDoctype(withRootAttribute(sample, "Junk=\"&e;\""), declaration));
               })
            << entity;
        // Never fetched: the load ends within the child's time limit without a network.
        QTest::newRow("external DTD over the network") << transformed([](const QByteArray& sample) {
            return withDoctype(sample, "<!DOCTYPE x SYSTEM \"http://192.0.2.1/description.dtd\">");
        }) << QString();
        QTest::newRow("external parameter entity over the network")
            << transformed([](const QByteArray& sample) {
                   return withDoctype(sample,
                                      "<!DOCTYPE x [<!ENTITY % p SYSTEM \"http://192.0.2.1/p.dtd\"> %p;]>");
               })
            << entity;
    }

    // Every kind of file, as a single file or beside a good file in its
    // directory. A directory loader may also leave out what its listing does
    // not show (a FIFO, a device, a dangling link): it then loads cleanly.
    void hostileEntries() {
        QFETCH(Make, make);
        QFETCH(QString, expected);
        const bool unprivileged = QByteArray(QTest::currentDataTag()) == "no read permission";
        for (const Kind& kind : kinds()) {
            QTemporaryDir root;
            QFile::setPermissions(root.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner |
                                                   QFile::ReadOther | QFile::ExeOther | QFile::ReadGroup |
                                                   QFile::ExeGroup);
            const QByteArray good = sampleOf(kind);
            QString loaded = root.filePath("hostile");
            QString reference;
            QString entry = root.filePath(kind.fileName);
            if (kind.directory()) {
                // The good file sorts first, so a catalogue that stops at the
                // first failing file has read it.
                const QString dir = root.filePath(QStringLiteral("hostile/") + kind.subdir);
                reference = root.filePath(QStringLiteral("reference"));
                const QString referenceDir = reference + '/' + kind.subdir;
                QDir().mkpath(dir);
                QDir().mkpath(referenceDir);
                const QString goodName = *kind.subdir ? QFileInfo(kind.sample).fileName() : QString("a.xml");
                write(dir + '/' + goodName, good);
                write(referenceDir + '/' + goodName, good);
                entry = QDir::cleanPath(dir + '/' + kind.fileName);
            } else {
                loaded = entry;
            }
            make(entry, good);

            const ChildRun run = runInChild([&] { return encode(loadOnce(kind, loaded, reference)); },
                                            Limits{10, kAddressSpace, unprivileged});
            QVERIFY2(run.failure.isEmpty(), qPrintable(QStringLiteral("%1: %2").arg(kind.name, run.failure)));
            const Outcome o = decode(run.output);
            const QString context = QStringLiteral("%1: returned %2, error \"%3\"")
                                        .arg(kind.name)
                                        .arg(o.ok)
                                        .arg(o.error.left(300));
            const bool skippedByListing = kind.directory() && o.ok && o.error.isEmpty();
            if (expected.isEmpty() || skippedByListing) {
                QVERIFY2(o.ok && o.error.isEmpty(), qPrintable(context));
            } else {
                const QRegularExpression pattern(
                    '^' + QString(expected).replace("%1", QRegularExpression::escape(entry)) + '$');
                QVERIFY2(pattern.match(o.error).hasMatch(), qPrintable(context));
                // The device registry skips a file it cannot read.
                QVERIFY2(o.ok == (QByteArray(kind.name) == "device directory"), qPrintable(context));
            }
            QVERIFY2(o.othersLoaded, qPrintable(context + ", the good file's records are missing"));
            QVERIFY2(!(o.error + o.messages.join('\n')).contains(kSecret), qPrintable(context));
        }
    }

    void siblingsAtTheLimits_data() {
        QTest::addColumn<int>("kind");
        for (int i = 0; i < kinds().size(); ++i) {
            if (!kinds()[i].siblings.isEmpty()) QTest::newRow(kinds()[i].name) << i;
        }
    }

    // Every walk is linear in the size of its file: with the kind's repeated
    // element copied as often as the limits allow, the walk reaches each
    // element a bounded number of times (visits counted through the load
    // observer, so nothing depends on the machine's speed), and the load fits
    // in the address space. Times and the peak memory are printed; `make
    // bench` measures them.
    void siblingsAtTheLimits() {
        QFETCH(int, kind);
        const Kind& k = kinds()[kind];
        const QByteArray xml = siblingsDocument(sampleOf(k), k.siblings);
        DocumentShape shape;
        QVERIFY(checkLimits(xml, DocumentLimits(), nullptr, &shape));
        QTemporaryDir root;
        const QString dir = k.directory() ? root.filePath(QStringLiteral("d/") + k.subdir) : root.path();
        QDir().mkpath(dir);
        write(dir + '/' + k.fileName, xml);
        const QString path = k.directory() ? root.filePath("d") : dir + '/' + k.fileName;

        const ChildRun run = runInChild(
            [&] {
                VisitCounter counter;
                setLoadObserver(&counter);
                const double start = cpuMs();
                const Outcome o = loadOnce(k, path, {});
                const double load = cpuMs() - start;
                setLoadObserver(nullptr);
                QByteArray bytes;
                QDataStream(&bytes, QIODevice::WriteOnly) << counter.visits << load << o.ok << o.error;
                return bytes;
            },
            Limits{120, kAddressSpace, false});
        QVERIFY2(run.failure.isEmpty(), qPrintable(run.failure));
        qint64 visits = 0;
        double load = 0;
        bool ok = false;
        QString error;
        QDataStream(run.output) >> visits >> load >> ok >> error;
        qInfo("%s: %d bytes, %d elements, %lld visits, load %.0f ms CPU, peak %ld MiB", k.name,
              int(xml.size()), shape.elements, visits, load, run.peakKiB / 1024);
        QVERIFY2(ok, qPrintable(error));
        QVERIFY2(visits <= 4 * qint64(shape.elements),
                 qPrintable(QStringLiteral("%1 visits for %2 elements").arg(visits).arg(shape.elements)));
    }

    // Files at the limits cost the parser at most a few times what a
    // realistic file of the same size costs: many attributes on every
    // element (compared pairwise), namespace declarations (each end tag
    // compares the prefixes in scope), the most elements. CPU time in one
    // child, against a bound wide enough that another process cannot break
    // it; a quadratic path passed by the limits costs a hundred times more.
    void denseFiles_data() {
        QTest::addColumn<QByteArray>("xml");
        QByteArray element = "<e";
        for (int i = 0; i < kMaxElementAttributes; ++i)
            element += " a" + QByteArray::number(i) + "=\"\"";
        element += "/>\n";
        QByteArray declarations;
        for (int i = 0; i < kMaxNamespaceDeclarations; ++i)
            declarations += " xmlns:p" + QByteArray::number(i) + "=\"urn:" + QByteArray::number(i) + '"';
        const QByteArray open = "<LCD version=\"1.0\"><LcdKeys>", close = "</LcdKeys></LCD>";
        const int fit = int((kMaxDocumentSize - 64) / element.size());
        QTest::newRow("most attributes on every element") << open + element.repeated(fit) + close;
        QTest::newRow("most namespace declarations, most elements")
            << "<LCD" + declarations + "><LcdKeys>" +
                   QByteArray("<p0:e/>").repeated(kMaxDocumentElements - 2) + close;
        QTest::newRow("most elements")
            << open + QByteArray("<e/>").repeated(kMaxDocumentElements - 2) + close;
    }
    void denseFiles() {
        QFETCH(QByteArray, xml);
        QTemporaryDir root;
        const QString dense = root.filePath("dense.xml"), plain = root.filePath("plain.xml");
        write(dense, xml);
        write(plain, plainDocument(xml.size()));
        const ChildRun run = runInChild(
            [&] {
                QByteArray bytes;
                QDataStream stream(&bytes, QIODevice::WriteOnly);
                for (const QString& path : {plain, dense}) {
                    QString error;
                    const double start = cpuMs();
                    const bool ok = KeyCheckConfig().readConfig(path, error);
                    stream << ok << error << cpuMs() - start;
                }
                return bytes;
            },
            Limits{60, kAddressSpace, false});
        QVERIFY2(run.failure.isEmpty(), qPrintable(run.failure));
        QDataStream stream(run.output);
        bool plainOk = false, denseOk = false;
        QString plainError, denseError;
        double plainMs = 0, denseMs = 0;
        stream >> plainOk >> plainError >> plainMs >> denseOk >> denseError >> denseMs;
        qInfo("%d bytes: plain %.0f ms CPU, dense %.0f ms CPU (%.2fx), peak %ld MiB", int(xml.size()),
              plainMs, denseMs, denseMs / plainMs, run.peakKiB / 1024);
        QVERIFY2(plainOk && denseOk, qPrintable(plainError + denseError));
        QVERIFY2(denseMs <= 8 * plainMs, "the dense file costs more than 8 times a plain one");
    }

    // Memory running out during a load is a failure in the parse-error form,
    // not an abort, and the component loads the next file: a forked child
    // whose address space ends a little above what it already uses.
    void outOfMemory() {
        if (kSanitized) QSKIP("the sanitizer's allocator aborts instead of failing an allocation");
        QTemporaryDir root;
        const QString big = root.filePath("big.xml"), good = root.filePath("checklist.xml");
        QByteArray element = "<e";
        for (int i = 0; i < kMaxElementAttributes; ++i)
            element += " a" + QByteArray::number(i) + "=\"\"";
        element += "/>\n";
        write(big, "<LCD version=\"1.0\"><LcdKeys>" +
                       element.repeated(int((kMaxDocumentSize - 64) / element.size())) + "</LcdKeys></LCD>");
        write(good, sampleOf(kinds()[kinds().size() - 2]));
        const ChildRun run = runInChild(
            [&] {
                QFile statm("/proc/self/statm");
                statm.open(QIODevice::ReadOnly);
                const qint64 used =
                    statm.readAll().split(' ').value(0).toLongLong() * ::sysconf(_SC_PAGESIZE);
                rlimit limit{};
                ::getrlimit(RLIMIT_AS, &limit);
                const rlimit tight{rlim_t(used + (qint64(64) << 20)), limit.rlim_max};
                ::setrlimit(RLIMIT_AS, &tight);
                KeyCheckConfig component;
                QString first, second;
                const bool bigOk = component.readConfig(big, first);
                ::setrlimit(RLIMIT_AS, &limit);
                const bool goodOk = component.readConfig(good, second);
                QByteArray bytes;
                QDataStream(&bytes, QIODevice::WriteOnly) << bigOk << first << goodOk << second;
                return bytes;
            },
            Limits{60, kAddressSpace, false});
        QVERIFY2(run.failure.isEmpty(), qPrintable(run.failure));
        bool bigOk = true, goodOk = false;
        QString first, second;
        QDataStream(run.output) >> bigOk >> first >> goodOk >> second;
        QCOMPARE(bigOk, false);
        QCOMPARE(first,
                 QStringLiteral("Parse error at line 0, column 0:\nnot enough memory to read the file; the "
                                "file is rejected"));
        QVERIFY2(goodOk, qPrintable(second));
    }
};

int main(int argc, char** argv) {
    // The rows at the limits parse megabytes, in every kind: longer than
    // QtTest's default limit for one function on a slow machine.
    if (!qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT")) qputenv("QTEST_FUNCTION_TIMEOUT", "3600000");
    QCoreApplication app(argc, argv);
    Hostile test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_hostile.moc"
