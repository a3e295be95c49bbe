#pragma once

#include "host/assignment.h"
#include "host/json.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <span>
#include <variant>
#include <vector>

namespace brimlet {

// Lenient parsing: these functions return nothing for a key that is missing or whose value has the
// wrong type, and the caller uses its default. They never throw.

/// The value if it is a JSON string.
[[nodiscard]] std::optional<QString> readString(const Json& object, const char* key);

/// The value if it is a whole JSON number that fits std::int64_t, however it is written (1234,
/// 1234.0, 1e3).
[[nodiscard]] std::optional<std::int64_t> readInteger(const Json& object, const char* key);

/// The value if it is true, false, 0 or 1.
[[nodiscard]] std::optional<bool> readBoolean(const Json& object, const char* key);

/// The value if it is a JSON string with a well-formed address.
[[nodiscard]] std::optional<Url> readUrl(const Json& object, const char* key);

/// Missing texts become empty, missing or malformed addresses absent. The tagline is the value of
/// "copy", or else of "tagline".
[[nodiscard]] SlotCreative readCreative(const Json& object);

/// The creatives under the key "creatives", in order; empty if that is not an array or any element
/// is not an object.
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

// The keys that are read, for the tests that compare them with docs/service/openapi.yaml.

/// The key of the array of creatives.
inline constexpr const char* kCreativesKey = "creatives";

/// Any other key of a reply. The type of its field says which values are accepted.
struct ReplyKey final {
    const char* name;
    std::variant<std::optional<QString> ReplyFields::*, std::optional<std::int64_t> ReplyFields::*,
                 std::optional<bool> ReplyFields::*>
        field;
};
[[nodiscard]] std::span<const ReplyKey> replyKeys();

/// A key of a creative. Of two keys for one field the later one counts if its value is a string.
struct CreativeKey final {
    const char* name;
    std::variant<QString SlotCreative::*, std::optional<Url> SlotCreative::*> field;
};
[[nodiscard]] std::span<const CreativeKey> creativeKeys();

} // namespace brimlet
