#pragma once

#include "tools/placement/scenario.h"

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brimlet::placement {

/// The parts of a request that decide the answer, independent of the HTTP library.
struct Incoming {
    std::string method;
    std::string path;
    /// The Authorization header's value as sent; absent when there was none.
    std::optional<std::string> authorization;
    std::string body;
    /// The If-None-Match header's value; empty when there was none.
    std::string ifNoneMatch = {};
};

struct Reply {
    int status = 200;
    std::string contentType = "application/json";
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
};

/// A reply and how it is sent.
struct Answer {
    Reply reply;
    std::chrono::milliseconds delay{0};
    Fault fault = Fault::None;
};

} // namespace brimlet::placement
