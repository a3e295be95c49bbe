#pragma once

#include "platform/instancerequest.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace brimlet {

/// Which program it is; each has its own options.
enum class Program {
    Linux,
    Mac, ///< Has a self-test, too.
    Simulator,
};

/// The parsed options of a program that continues to run.
struct CommandLine final {
    QString machineFile;
    bool isConsoleWanted = false;
    bool isSelfTestWanted = false;
    bool isDiagnosisWanted = false;
    StartReason reason = StartReason::ByHand;
    /// A request to send to the program that is already running; this process then ends.
    std::optional<InstanceRequest> request;
};

/// `argv`, including the program's name, decoded from the locale's encoding.
[[nodiscard]] QStringList argumentsOf(int argc, char* argv[]);

/// Reads the command line. `--help` and `--version` print to stdout and give exit code 0; anything
/// unknown prints one line and the usage to stderr and gives 2. Without an exit code the program
/// continues, with its options in `commandLine`.
[[nodiscard]] std::optional<int> readCommandLine(const QStringList& arguments, Program program,
                                                 CommandLine& commandLine);

/// The exit code of a process that only asks the running program for something: 0 if that was done,
/// else 1, after a line on stderr.
[[nodiscard]] int exitCodeOf(InstanceAnswer answer);

} // namespace brimlet
