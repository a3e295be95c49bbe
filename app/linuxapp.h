#pragma once

#include "creative/creativeenvironment.h"
#include "overlay/overlaypanel.h"

#include <QRectF>
#include <QStringList>

#include <functional>
#include <optional>

namespace brimlet {

class HostStore;
class LinuxWorkspace;

/// What both programs do before the application object: choose the X11 platform, where windows can
/// be placed, also under Wayland.
void prepareLinuxApplication();

/// What both programs do right after it.
void configureLinuxApplication();

/// Makes the overlay's window on the X server with its views inside. `primaryGeometry` gives the
/// primary screen in Qt's space at the time of asking.
[[nodiscard]] OverlayWindowFactory
overlayWindowFactory(const std::function<QRectF()>& primaryGeometry,
                     const CreativeEnvironment& environment);

/// Has the workspace look at the built-in panel's power after each change of the store: every reply
/// and every failed request is one, so that happens every few seconds anyway.
void followPanelPower(const HostStore& store, LinuxWorkspace& workspace);

/// What the command line asks of a program that goes on.
struct CommandLine final {
    QString machineFile;
    bool isConsoleWanted = false;
};

/// The program's arguments, decoded.
[[nodiscard]] QStringList argumentsOf(int argc, char* argv[]);

/// Reads the command line. `--help` and `--version` print to stdout and give exit code 0; anything
/// unknown prints one line and the usage to stderr and gives 2. Without an exit code the program
/// goes on. The simulator's options are known only with `isSimulator`.
[[nodiscard]] std::optional<int> readCommandLine(const QStringList& arguments, bool isSimulator,
                                                 CommandLine& commandLine);

} // namespace brimlet
