#pragma once

#include "platform/linux/freedesktopapplication.h"

#include <QStringList>

#include <optional>

namespace brimlet {

/// What the command line asks of a program that goes on.
struct CommandLine final {
    QString machineFile;
    bool isConsoleWanted = false;
    /// What the program that runs is to do; this one then ends.
    std::optional<InstanceRequest> request;
};

/// The program's arguments, decoded.
[[nodiscard]] QStringList argumentsOf(int argc, char* argv[]);

/// Reads the command line. `--help` and `--version` print to stdout and give exit code 0; anything
/// unknown prints one line and the usage to stderr and gives 2. Without an exit code the program
/// goes on. The simulator's options are known only with `isSimulator`.
[[nodiscard]] std::optional<int> readCommandLine(const QStringList& arguments, bool isSimulator,
                                                 CommandLine& commandLine);

} // namespace brimlet
