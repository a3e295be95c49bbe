#pragma once

#include "host/assignment.h"
#include "host/json.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace brimlet {

// Lenient reading of a reply's fields: a key that is missing, or whose value has the wrong type,
// is absent, and the caller uses its default. Nothing here fails or throws.

/// Only a JSON string.
[[nodiscard]] std::optional<QString> readString(const Json& object, const char* key);

/// Only a JSON number that is a whole number within 64 signed bits, however it is written
/// (1234, 1234.0, 1e3).
[[nodiscard]] std::optional<std::int64_t> readInteger(const Json& object, const char* key);

/// Only true and false, and the numbers 0 and 1.
[[nodiscard]] std::optional<bool> readBoolean(const Json& object, const char* key);

/// Only a JSON string that is a well-formed address.
[[nodiscard]] std::optional<Url> readUrl(const Json& object, const char* key);

/// A text that is missing is empty, an address that is missing or malformed is absent. The tagline
/// is the key "copy", or else "tagline".
[[nodiscard]] SlotCreative readCreative(const Json& object);

/// All creatives of the key "creatives", in order; empty unless it is an array of objects alone.
[[nodiscard]] std::vector<SlotCreative> readCreatives(const Json& reply);

/// The first creative whose slot is exactly `slotId`.
[[nodiscard]] std::optional<SlotCreative> creativeOfSlot(const std::vector<SlotCreative>& creatives,
                                                         QLatin1StringView slotId);

/// The fields of a reply. Amounts are euro cents.
struct ReplyFields final {
    std::optional<QString> weekStatus;
    std::optional<std::int64_t> estimatedCents;
    std::optional<std::int64_t> pendingStipendCents;
    std::optional<std::int64_t> liveHostCount;
    std::optional<std::int64_t> liveDaysThisWeek;
    std::optional<std::int64_t> liveBucketsToday;
    std::optional<std::int64_t> liveBucketsNeeded;
    std::optional<bool> forceHide;
    std::optional<bool> agreed;
    std::optional<bool> fromApplications;
    std::optional<QString> agreementText;
    std::optional<SlotCreative> left;
    std::optional<SlotCreative> right;
};

[[nodiscard]] ReplyFields readFields(const Json& reply);

} // namespace brimlet
