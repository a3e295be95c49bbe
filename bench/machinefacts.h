#pragma once

#include <map>
#include <string>

#include <sys/types.h>

namespace brimlet {

/// What figures from this machine depend on: "cpu", "cores", "memory", "system", "kernel", "date".
[[nodiscard]] std::map<std::string, std::string> machineFacts();

/// The version in the name of Qt's core library that a running program uses; empty without one.
[[nodiscard]] std::string qtVersionOf(pid_t program);

} // namespace brimlet
