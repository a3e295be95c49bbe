#pragma once

#include "tools/placement/requestlog.h"
#include "tools/placement/responder.h"
#include "tools/placement/scenariofile.h"

#include <mutex>
#include <optional>

namespace brimlet::placement {

/// Where requests of all connections come together: looks at the scenario, asks the responder with
/// the present time, and writes the log. Thread-safe.
class Desk final {
public:
    /// The scenario file, if any, has been looked at once already and `responder` knows its
    /// content.
    Desk(Responder responder, std::optional<ScenarioFile> scenarioFile, RequestLog log);

    /// `facts` holds what the request brought: query and headers.
    [[nodiscard]] Answer answer(const Incoming& request, LogFacts facts);
    /// Logs a request that the HTTP library refused by itself, for example one that is too large.
    void noteRefusal(const Incoming& request, LogFacts facts, int status);

private:
    void write(const Incoming& request, LogFacts& facts);

    std::mutex m_mutex;
    Responder m_responder;
    std::optional<ScenarioFile> m_scenarioFile;
    RequestLog m_log;
};

} // namespace brimlet::placement
