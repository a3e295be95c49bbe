#pragma once

#include "host/assignment.h"
#include "host/json.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace brimlet {

// Lenient reading of a reply's fields: a key that is missing, or whose value has the wrong type,
// is absent, and the caller's default takes its place. Nothing here can fail.

/// Only a JSON string.
[[nodiscard]] std::optional<QString> readString(const Json& object, const char* key);

/// Only a JSON number that is a whole number within 64 signed bits, however it is written
/// (1234, 1234.0, 1e3).
[[nodiscard]] std::optional<std::int64_t> readInteger(const Json& object, const char* key);

/// Only true and false, and the numbers 0 and 1.
[[nodiscard]] std::optional<bool> readBoolean(const Json& object, const char* key);

/// Only a JSON string that is a well-formed address.
[[nodiscard]] std::optional<Url> readUrl(const Json& object, const char* key);

/// Never fails: an empty object gives a creative with empty texts and absent addresses.
[[nodiscard]] SlotCreative readCreative(const Json& object);

/// All creatives of the key "creatives", in order; none at all unless it is an array of objects.
[[nodiscard]] std::vector<SlotCreative> readCreatives(const Json& reply);

/// The first creative meant for the slot, by exact name; absent when there is none.
[[nodiscard]] std::optional<SlotCreative> creativeOfSlot(const std::vector<SlotCreative>& creatives,
                                                         QLatin1StringView slotId);

/// What a reply says of the week; a field is absent where it says nothing of the right type.
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

/// All of them at once. Never fails.
[[nodiscard]] ReplyFields readFields(const Json& reply);

} // namespace brimlet
