#pragma once

#include "tools/placement/answer.h"
#include "tools/placement/model.h"
#include "tools/placement/scenario.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace brimlet::placement {

/// An Authorization header: the scheme, and what follows it and its blanks.
struct Credential {
    std::string scheme;
    std::string secret;
};

[[nodiscard]] Credential splitAuthorization(std::string_view value);

/// A reply with an object `{"error": message}`.
[[nodiscard]] Reply errorReply(int status, const std::string& message);

/// Decides the answer to every request: from the model and the pictures, then changed by the
/// scenario. Not thread-safe.
class Responder final {
public:
    /// `root` is the service's own address, without a slash at its end. `picturesByName` holds PNG
    /// bytes.
    Responder(std::string root, std::map<std::string, std::string, std::less<>> picturesByName);

    /// Keeps the hosts' figures.
    void setScenario(Scenario scenario);
    [[nodiscard]] const Scenario& scenario() const { return m_scenario; }

    /// A request counts in the model even where the scenario replaces its reply.
    [[nodiscard]] Answer answer(const Incoming& request, Instant now);

    /// Whether the Authorization header holds a bearer token of the scenario.
    [[nodiscard]] bool knows(const std::optional<std::string>& authorization) const;

private:
    [[nodiscard]] Reply plainReply(const Incoming& request, Instant now);
    [[nodiscard]] Reply hostReply(const Incoming& request, Instant now);
    [[nodiscard]] Reply pictureReply(std::string_view path) const;
    [[nodiscard]] nlohmann::json placement() const;

    std::string m_root;
    std::map<std::string, std::string, std::less<>> m_pictures;
    Scenario m_scenario;
    Model m_model;
};

} // namespace brimlet::placement
