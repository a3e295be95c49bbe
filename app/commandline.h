#pragma once

#include "platform/instancerequest.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace brimlet {

/// The programs, whose options differ.
enum class Program {
    Linux,
    Mac, ///< Knows a self-test besides.
    Simulator,
};

/// What the command line asks of a program that goes on.
struct CommandLine final {
    QString machineFile;
    bool isConsoleWanted = false;
    bool isSelfTestWanted = false;
    /// What the program that runs is to do; this one then ends.
    std::optional<InstanceRequest> request;
};

/// The program's arguments, decoded.
[[nodiscard]] QStringList argumentsOf(int argc, char* argv[]);

/// Reads the command line. `--help` and `--version` print to stdout and give exit code 0; anything
/// unknown prints one line and the usage to stderr and gives 2. Without an exit code the program
/// goes on.
[[nodiscard]] std::optional<int> readCommandLine(const QStringList& arguments, Program program,
                                                 CommandLine& commandLine);

/// What is said where a program runs that does not answer.
inline constexpr const char* kNoAnswer =
    "brimlet: Brimlet is running already but does not answer.\n";

/// How a start ends that is not the first one: with 0 once the running program has been asked for
/// its panel, with 1 and a line on stderr where it does not answer. Absent for the first one, which
/// goes on.
[[nodiscard]] std::optional<int> exitCodeOf(InstanceClaim claim);

} // namespace brimlet
