#pragma once

#include "app/diagnosis.h"

namespace brimlet {

/// Asks the system and the desktop. `root` is the folder that contains "etc", "proc" and "sys".
/// Needs an application object; X11's screens are known to one with windows only. Starts no service
/// and shows nothing; blocks for a second for each service that does not answer.
[[nodiscard]] Diagnosis diagnose(const QString& root = QStringLiteral("/"));

/// Prints the diagnosis to stdout and ends the process with 0. Works without a display server and
/// beside the running program.
[[noreturn]] void printDiagnosis(int argc, char* argv[]);

} // namespace brimlet
