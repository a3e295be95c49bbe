#include "tools/placement/options.h"

#include <charconv>

namespace brimlet::placement {

namespace {

bool readPort(std::string_view text, int& port) {
    const char* const end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, port);
    return problem == std::errc{} && stop == end && port >= 0 && port <= 65535;
}

} // namespace

std::optional<Options> parseOptions(std::span<const char* const> arguments, std::string& error) {
    Options options;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string_view argument = arguments[index];
        const std::size_t equals = argument.find('=');
        const std::string name(argument.substr(0, equals));
        if (argument == "--help" || argument == "--version") {
            (argument == "--help" ? options.help : options.version) = true;
            continue;
        }
        if (name != "--port" && name != "--scenario" && name != "--log") {
            error = "unknown option " + std::string(argument);
            return std::nullopt;
        }
        const bool hasNext = equals == std::string_view::npos && index + 1 < arguments.size();
        const std::string value(equals != std::string_view::npos ? argument.substr(equals + 1)
                                : hasNext                        ? arguments[++index]
                                                                 : "");
        if (value.empty()) {
            error = name + " needs a value";
            return std::nullopt;
        }
        if (name == "--port" && !readPort(value, options.port)) {
            error = "--port must be a number from 0 to 65535, not " + value;
            return std::nullopt;
        }
        if (name != "--port") {
            (name == "--scenario" ? options.scenarioFile : options.logFile) = value;
        }
    }
    return options;
}

std::string_view helpText() {
    return "Usage: brimlet-placement [--port N] [--scenario FILE] [--log FILE]\n"
           "\n"
           "A placement service for trying and testing Brimlet on this machine. It listens on\n"
           "127.0.0.1 only, keeps everything in memory and pays nothing to anyone.\n"
           "\n"
           "  --port N         port to listen on, 0 for any free one (default 8791)\n"
           "  --scenario FILE  JSON file that changes what is answered; edits take effect at the\n"
           "                   next request (see docs/placement.md)\n"
           "  --log FILE       append one JSON object for each request received\n"
           "  --help           show this and exit\n"
           "  --version        show the version and exit\n"
           "\n"
           "The host token is \"demo-host-token\" unless the scenario names others.\n";
}

} // namespace brimlet::placement
