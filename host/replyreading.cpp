#include "host/replyreading.h"

#include "host/utf8.h"

#include <algorithm>
#include <limits>

namespace brimlet {
namespace {

const Json* valueOf(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

// The parser has made every whole number an integer, however it was written.
std::optional<std::int64_t> wholeNumber(const Json& value) {
    if (value.is_number_unsigned()) {
        const auto number = value.get<std::uint64_t>();
        constexpr auto kMax = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        return number <= kMax ? std::optional(static_cast<std::int64_t>(number)) : std::nullopt;
    }
    if (value.is_number_integer()) {
        return value.get<std::int64_t>();
    }
    return std::nullopt;
}

} // namespace

std::optional<QString> readString(const Json& object, const char* key) {
    const Json* value = valueOf(object, key);
    if (value == nullptr || !value->is_string()) {
        return std::nullopt;
    }
    return textFromUtf8(value->get_ref<const std::string&>());
}

std::optional<std::int64_t> readInteger(const Json& object, const char* key) {
    const Json* value = valueOf(object, key);
    return value == nullptr ? std::nullopt : wholeNumber(*value);
}

std::optional<bool> readBoolean(const Json& object, const char* key) {
    const Json* value = valueOf(object, key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (value->is_boolean()) {
        return value->get<bool>();
    }
    const auto number = wholeNumber(*value);
    if (number == 0 || number == 1) {
        return number == 1;
    }
    return std::nullopt;
}

std::optional<Url> readUrl(const Json& object, const char* key) {
    const auto text = readString(object, key);
    return text ? Url::fromString(*text) : std::nullopt;
}

SlotCreative readCreative(const Json& object) {
    SlotCreative creative;
    creative.slotId = readString(object, "slotId").value_or(QString());
    creative.brandName = readString(object, "brandName").value_or(QString());
    auto tagline = readString(object, "copy");
    if (!tagline) {
        tagline = readString(object, "tagline");
    }
    creative.tagline = tagline.value_or(QString());
    creative.assetURL = readUrl(object, "assetUrl");
    creative.brandURL = readUrl(object, "brandUrl");
    return creative;
}

std::vector<SlotCreative> readCreatives(const Json& reply) {
    std::vector<SlotCreative> creatives;
    const Json* list = valueOf(reply, "creatives");
    const auto isObject = [](const Json& element) { return element.is_object(); };
    if (list == nullptr || !list->is_array() ||
        !std::all_of(list->begin(), list->end(), isObject)) {
        return creatives;
    }
    creatives.reserve(list->size());
    for (const Json& element : *list) {
        creatives.push_back(readCreative(element));
    }
    return creatives;
}

std::optional<SlotCreative> creativeOfSlot(const std::vector<SlotCreative>& creatives,
                                           QLatin1StringView slotId) {
    const auto found = std::find_if(creatives.begin(), creatives.end(), [&](const auto& creative) {
        return creative.slotId == slotId;
    });
    return found == creatives.end() ? std::nullopt : std::optional(*found);
}

ReplyFields readFields(const Json& reply) {
    const auto creatives = readCreatives(reply);
    return {.weekStatus = readString(reply, "weekStatus"),
            .estimatedCents = readInteger(reply, "estimatedCents"),
            .pendingStipendCents = readInteger(reply, "pendingStipendCents"),
            .liveHostCount = readInteger(reply, "liveHostCount"),
            .liveDaysThisWeek = readInteger(reply, "liveDaysThisWeek"),
            .liveBucketsToday = readInteger(reply, "liveBucketsToday"),
            .liveBucketsNeeded = readInteger(reply, "liveBucketsNeeded"),
            .forceHide = readBoolean(reply, "forceHide"),
            .agreed = readBoolean(reply, "agreed"),
            .fromApplications = readBoolean(reply, "fromApplications"),
            .agreementText = readString(reply, "agreementText"),
            .left = creativeOfSlot(creatives, QLatin1StringView("left")),
            .right = creativeOfSlot(creatives, QLatin1StringView("right"))};
}

} // namespace brimlet
