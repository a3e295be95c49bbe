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
    /// Ads show only while this is exactly "live".
    QString weekStatus = QStringLiteral("unfilled");
    std::int64_t estimatedCents = 0;
    std::int64_t pendingStipendCents = 0;
    std::int64_t liveHostCount = 0;
    std::int64_t liveDaysThisWeek = 0;
    std::int64_t liveBucketsToday = 0;
    std::int64_t liveBucketsNeeded = 4;
    bool forceHide = false;
    bool agreed = false;
    bool fromApplications = false;
    QString agreementText;
    std::optional<SlotCreative> left;
    std::optional<SlotCreative> right;

    bool operator==(const Assignment&) const = default;
};

/// The state before the first reply.
[[nodiscard]] Assignment initialAssignment(bool fromApplications);

/// Whether the path begins with "/Applications/", in this letter case.
[[nodiscard]] bool isInApplications(const QString& bundlePath);

} // namespace brimlet
