#include "app/linuxapp.h"

#include "host/hoststore.h"
#include "overlay/overlayview.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/startmemory.h"
#include "platform/linux/terminationsignals.h"
#include "platform/linux/x11overlaywindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTimer>

#include <cstdio>
#include <map>
#include <memory>
#include <utility>

namespace brimlet {
namespace {

/// What the environment said where our own settings stand in it, by name; null where it said
/// nothing.
std::map<const char*, QByteArray> environmentBefore;

/// Sets a variable for Qt alone: it is put back once the application object has read it.
void setForQt(const char* name, const QByteArray& value) {
    environmentBefore[name] = qgetenv(name);
    qputenv(name, value);
}

/// The browser that a click starts should find the user's own settings.
void restoreEnvironment() {
    for (const auto& [name, value] : std::exchange(environmentBefore, {})) {
        if (value.isNull()) {
            qunsetenv(name);
        } else {
            qputenv(name, value);
        }
    }
}

void print(FILE* stream, const QString& text) {
    std::fputs(text.toUtf8().constData(), stream);
}

} // namespace

void prepareLinuxApplication() {
    const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
    const bool isOpen = platform.isEmpty() || platform.startsWith("wayland");
    if (isOpen && qEnvironmentVariableIsSet("DISPLAY")) {
        setForQt("QT_QPA_PLATFORM", "xcb");
    }
    // Through shared memory each paint would wait for the X server to have read the one before it.
    // What a scroll paints is a few kilobytes, which are sent faster than waited for.
    setForQt("QT_XCB_NO_MITSHM", "1");
}

void configureLinuxApplication() {
    restoreEnvironment();
    QCoreApplication::setApplicationName(QStringLiteral("brimlet"));
    QCoreApplication::setApplicationVersion(QStringLiteral(BRIMLET_VERSION));
    // Hiding the overlay is everyday life, not the end.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    quitOnTerminationSignals();
    // By then the capsules are shown and fonts and pictures found.
    constexpr std::chrono::seconds kStartIsOver{2};
    QTimer::singleShot(kStartIsOver, Qt::VeryCoarseTimer, qApp, giveBackStartMemory);
}

OverlayWindowFactory overlayWindowFactory(const std::function<QRectF()>& primaryGeometry,
                                          const CreativeEnvironment& environment) {
    return [primaryGeometry, environment](OverlayRuntime& runtime) {
        auto content = std::make_unique<OverlayView>(runtime, environment);
        const auto* const view = content.get();
        auto window = std::make_unique<X11OverlayWindow>(std::move(content), primaryGeometry);
        QObject::connect(view, &OverlayView::regionsChanged, window.get(),
                         [view, target = window.get()] {
                             target->setShapes(view->clickable(), view->painted());
                         });
        return window;
    };
}

void followPanelPower(const HostStore& store, LinuxWorkspace& workspace) {
    // Once for the many changes of one reply, and after them: what is found may change the store.
    QObject::connect(&store, &HostStore::objectWillChange, &workspace,
                     [&workspace, isDue = std::make_shared<bool>(false)] {
                         if (!std::exchange(*isDue, true)) {
                             QMetaObject::invokeMethod(
                                 &workspace,
                                 [&workspace, isDue] {
                                     *isDue = false;
                                     workspace.checkPanelPower();
                                 },
                                 Qt::QueuedConnection);
                         }
                     });
}

QStringList argumentsOf(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    return arguments;
}

std::optional<int> readCommandLine(const QStringList& arguments, bool isSimulator,
                                   CommandLine& commandLine) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        isSimulator ? QStringLiteral("Runs Brimlet on a machine described in a file.")
                    : QStringLiteral("Shows the week's brands beside the camera notch."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Print this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version."));
    const QCommandLineOption machine(QStringLiteral("machine"),
                                     QStringLiteral("The machine to run on, a JSON file."),
                                     QStringLiteral("file"));
    const QCommandLineOption console(
        QStringLiteral("console"),
        QStringLiteral("Read commands from standard input and answer in JSON lines."));
    parser.addOptions({help, version});
    if (isSimulator) {
        parser.addOptions({machine, console});
    }
    const bool isParsed = parser.parse(arguments);
    const QString program =
        isSimulator ? QStringLiteral("brimlet-simulator") : QStringLiteral("brimlet");
    const QString usage =
        isSimulator ? QStringLiteral("Usage: %1 --machine FILE [--console]\n").arg(program)
                    : QStringLiteral("Usage: %1 [--help | --version]\n").arg(program);
    const auto refuse = [&](const QString& complaint) {
        print(stderr, QStringLiteral("%1: %2\n%3").arg(program, complaint, usage));
        return 2;
    };
    if (!isParsed) {
        return refuse(parser.errorText());
    }
    if (parser.isSet(help)) {
        print(stdout, parser.helpText());
        return 0;
    }
    if (parser.isSet(version)) {
        print(stdout, QStringLiteral("%1 %2\n").arg(program, QStringLiteral(BRIMLET_VERSION)));
        return 0;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return refuse(QStringLiteral("Unknown argument '%1'.")
                          .arg(parser.positionalArguments().constFirst()));
    }
    if (isSimulator) {
        commandLine.machineFile = parser.value(machine);
        commandLine.isConsoleWanted = parser.isSet(console);
        if (commandLine.machineFile.isEmpty()) {
            return refuse(QStringLiteral("A machine file is needed."));
        }
    }
    return std::nullopt;
}

} // namespace brimlet
