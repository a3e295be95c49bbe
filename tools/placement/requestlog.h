#pragma once

#include "tools/placement/responder.h"

#include <chrono>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace brimlet::placement {

/// What a log line contains besides the request.
struct LogFacts {
    std::chrono::sys_time<std::chrono::milliseconds> time;
    /// The query after the "?", as sent; empty for none.
    std::string query;
    /// Names in lower case, in the order of sending; Authorization must not be among them.
    std::vector<std::pair<std::string, std::string>> headers;
    bool tokenKnown = false;
    /// Absent when no reply is sent at all.
    std::optional<int> status;
    Fault fault = Fault::None;
};

/// One line of the log, a JSON object, without its line break. It contains neither a token of
/// `knownTokens` nor the credential that was sent.
[[nodiscard]] std::string logLine(const Incoming& request, const LogFacts& facts,
                                  const std::vector<std::string>& knownTokens);

/// A file of log lines, each flushed as it is written.
class RequestLog final {
public:
    /// Opens for appending; false when that fails.
    [[nodiscard]] bool open(const std::string& path);
    /// Does nothing while no file is open.
    void append(const std::string& line);

private:
    std::ofstream m_file;
};

} // namespace brimlet::placement
