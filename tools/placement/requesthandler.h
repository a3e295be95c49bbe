#pragma once

#include "tools/placement/requestlog.h"
#include "tools/placement/responder.h"
#include "tools/placement/scenariofile.h"

#include <mutex>
#include <optional>

namespace brimlet::placement {

/// Handles the requests of all connections: reloads the scenario file, gets the answer for the
/// current time from the responder, and writes the log. Thread-safe.
class RequestHandler final {
public:
    /// The scenario file, if any, has been loaded once, and `responder` has its content.
    RequestHandler(Responder responder, std::optional<ScenarioFile> scenarioFile, RequestLog log);

    /// `facts` holds the request's query and headers.
    [[nodiscard]] Answer answer(const Incoming& request, LogFacts facts);
    /// Logs a request that the HTTP library refused itself, for example one that is too large.
    void logRefusal(const Incoming& request, LogFacts facts, int status);

private:
    void write(const Incoming& request, LogFacts& facts);

    std::mutex m_mutex;
    Responder m_responder;
    std::optional<ScenarioFile> m_scenarioFile;
    RequestLog m_log;
};

} // namespace brimlet::placement
