#pragma once

#include "tools/placement/model.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace brimlet::placement {

/// A fault in how a reply is sent.
enum class Fault {
    None,
    Hang,    ///< no answer until the client or the service ends
    Close,   ///< connection ended without a byte of reply
    Cut,     ///< more bytes promised than sent, then closed
    Garbage, ///< status 200 with a body that is not JSON
};

/// The wire name of a fault, as scenarios spell it; "none" for none.
[[nodiscard]] std::string_view faultName(Fault fault);

/// What a scenario changes in the replies of one path.
struct EndpointRule {
    /// Keys set in the reply object, null included; only where the reply is a 200 with an object.
    nlohmann::json merge = nlohmann::json::object();
    /// Keys removed from the reply object, after the merge.
    std::vector<std::string> remove;
    /// The whole body in place of the service's own.
    std::optional<std::string> body;
    std::optional<int> status;
    std::chrono::milliseconds delay{0};
    std::vector<std::pair<std::string, std::string>> headers;
    Fault fault = Fault::None;
};

/// All settings of the service; the defaults are the service without a scenario.
struct Scenario {
    std::vector<std::string> tokens{"demo-host-token"};
    std::string agreementText{
        "Host agreement, for trying out only. Brimlet shows two small advertisements beside the "
        "camera notch of your laptop. Each week's pool is split among the hosts that were live. "
        "The figure you see is an estimate, not a guarantee. You may pause or stop at any time."};
    Terms terms;
    /// Creative objects as sent; absent for the sample brands. A URL that begins with "/" gets
    /// the service's own root before it.
    std::optional<nlohmann::json> creatives;
    std::string weekStatus{"live"};
    bool forceHide = false;
    std::map<std::string, EndpointRule, std::less<>> endpoints;
};

/// A scenario, or one line that names the mistake and its place.
using ScenarioResult = std::variant<Scenario, std::string>;

/// Never throws; a key that is not known is an error that names it.
[[nodiscard]] ScenarioResult parseScenario(std::string_view text);

} // namespace brimlet::placement
