#pragma once

#include "platform/url.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace brimlet {

/// One creative in one slot, as the service sent it.
struct SlotCreative final {
    /// "left" or "right"; anything else is carried but never placed.
    QString slotId;
    QString brandName;
    QString tagline;
    std::optional<Url> assetURL;
    std::optional<Url> brandURL;

    bool operator==(const SlotCreative&) const = default;
};

/// The week's state as the placement service reports it. Money is whole euro cents.
struct Assignment final {
    /// The service's word for the week; ads show under exactly "live".
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

/// What stands before the first reply.
[[nodiscard]] Assignment initialAssignment(bool fromApplications);

/// Whether a bundle of that path runs from the system's Applications folder; a plain,
/// case-sensitive prefix test.
[[nodiscard]] bool isInApplications(const QString& bundlePath);

} // namespace brimlet
