#pragma once

#include <QString>

#include <cstdint>

namespace brimlet::statusline {

// All texts of the status line in the menu.

[[nodiscard]] QString loading();
[[nodiscard]] QString paused();
[[nodiscard]] QString notchedOnly();
[[nodiscard]] QString displayFailed();
[[nodiscard]] QString heartbeatFailed();
[[nodiscard]] QString tokenRejected();

/// After a reply to a display request. Outside the Applications folder the text does not depend on
/// whether ads are visible.
[[nodiscard]] QString afterDisplayReply(bool inApplications, bool adsVisible, bool hasToken);

/// After a reply to a request with the token. `estimatedCents` are euro cents.
[[nodiscard]] QString afterHostReply(bool inApplications, bool agreed, bool adsVisible,
                                     std::int64_t estimatedCents);

} // namespace brimlet::statusline
