#pragma once

#include "platform/url.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace brimlet {

/// One creative of one slot, as the service sent it. Texts may be empty.
struct SlotCreative final {
    /// "left" or "right"; a creative with another slot is never shown.
    QString slotId;
    QString brandName;
    QString tagline;
    std::optional<Url> assetURL;
    std::optional<Url> brandURL;

    bool operator==(const SlotCreative&) const = default;
};

/// The week's state as the placement service reports it. Amounts are euro cents.
struct Assignment final {
    /// Ads may show only while this is exactly "live".
    QString weekStatus = QStringLiteral("unfilled");
    std::int64_t estimatedCents = 0;
    std::int64_t pendingStipendCents = 0; ///< Earned, not yet paid out.
    std::int64_t liveHostCount = 0;       ///< Hosts that are live now.
    std::int64_t liveDaysThisWeek = 0;
    std::int64_t liveBucketsToday = 0;  ///< Periods of live time that this host earned today.
    std::int64_t liveBucketsNeeded = 4; ///< How many of them make today a live day.
    bool forceHide = false;             ///< The service wants ads hidden.
    bool agreed = false;                ///< The host has signed the agreement.
    bool fromApplications = false;      ///< Installed for the whole system, so live time counts.
    QString agreementText;
    std::optional<SlotCreative> left;
    std::optional<SlotCreative> right;

    bool operator==(const Assignment&) const = default;
};

/// The state before the first reply.
[[nodiscard]] Assignment initialAssignment(bool fromApplications);

/// Whether the path begins with "/Applications/" (case-sensitive). `LinuxBundle` reports such a
/// path for a system-wide installation.
[[nodiscard]] bool isInApplications(const QString& bundlePath);

} // namespace brimlet
