#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace brimlet::placement {

struct Options {
    int port = 8791;
    /// Empty for none.
    std::string scenarioFile;
    /// Empty for none.
    std::string logFile;
    bool help = false;
    bool version = false;
};

/// Reads the arguments after the program's name; absent when one is wrong, with `error` naming it.
[[nodiscard]] std::optional<Options> parseOptions(std::span<const char* const> arguments,
                                                  std::string& error);

/// The text of --help, ending in a line break.
[[nodiscard]] std::string_view helpText();

} // namespace brimlet::placement
