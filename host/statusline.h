#pragma once

#include <QString>

#include <cstdint>

namespace brimlet::statusline {

// The one line of status that the menu shows. Every text of it stands here.

[[nodiscard]] QString loading();
[[nodiscard]] QString paused();
[[nodiscard]] QString notchedOnly();
[[nodiscard]] QString displayFailed();
[[nodiscard]] QString heartbeatFailed();
[[nodiscard]] QString tokenRejected();

/// After a reply of the public display endpoint. Outside the Applications folder the line says so
/// whether or not ads are visible.
[[nodiscard]] QString afterDisplayReply(bool inApplications, bool adsVisible, bool hasToken);

/// After a reply to the host itself. `estimatedCents` are euro cents.
[[nodiscard]] QString afterHostReply(bool inApplications, bool agreed, bool adsVisible,
                                     std::int64_t estimatedCents);

} // namespace brimlet::statusline
