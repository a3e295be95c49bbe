#include "host/replyreading.h"

#include "host/utf8.h"

#include <algorithm>
#include <array>
#include <limits>

namespace brimlet {
namespace {

constexpr std::array kReplyKeys{
    ReplyKey{"weekStatus", &ReplyFields::weekStatus},
    ReplyKey{"estimatedCents", &ReplyFields::estimatedCents},
    ReplyKey{"pendingStipendCents", &ReplyFields::pendingStipendCents},
    ReplyKey{"liveHostCount", &ReplyFields::liveHostCount},
    ReplyKey{"liveDaysThisWeek", &ReplyFields::liveDaysThisWeek},
    ReplyKey{"liveBucketsToday", &ReplyFields::liveBucketsToday},
    ReplyKey{"liveBucketsNeeded", &ReplyFields::liveBucketsNeeded},
    ReplyKey{"forceHide", &ReplyFields::forceHide},
    ReplyKey{"agreed", &ReplyFields::agreed},
    ReplyKey{"fromApplications", &ReplyFields::fromApplications},
    ReplyKey{"agreementText", &ReplyFields::agreementText},
};

constexpr std::array kCreativeKeys{
    CreativeKey{"slotId", &SlotCreative::slotId},
    CreativeKey{"brandName", &SlotCreative::brandName},
    CreativeKey{"tagline", &SlotCreative::tagline},
    CreativeKey{"copy", &SlotCreative::tagline},
    CreativeKey{"assetUrl", &SlotCreative::assetURL},
    CreativeKey{"brandUrl", &SlotCreative::brandURL},
};

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

void read(const Json& object, const char* key, std::optional<QString>& field) {
    field = readString(object, key);
}

void read(const Json& object, const char* key, std::optional<std::int64_t>& field) {
    field = readInteger(object, key);
}

void read(const Json& object, const char* key, std::optional<bool>& field) {
    field = readBoolean(object, key);
}

void read(const Json& object, const char* key, std::optional<Url>& field) {
    field = readUrl(object, key);
}

void read(const Json& object, const char* key, QString& field) {
    if (auto text = readString(object, key)) {
        field = *std::move(text);
    }
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
    for (const CreativeKey& key : kCreativeKeys) {
        std::visit([&](auto field) { read(object, key.name, creative.*field); }, key.field);
    }
    return creative;
}

std::vector<SlotCreative> readCreatives(const Json& reply) {
    std::vector<SlotCreative> creatives;
    const Json* list = valueOf(reply, kCreativesKey);
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
    ReplyFields fields;
    for (const ReplyKey& key : kReplyKeys) {
        std::visit([&](auto field) { read(reply, key.name, fields.*field); }, key.field);
    }
    const auto creatives = readCreatives(reply);
    fields.left = creativeOfSlot(creatives, QLatin1StringView("left"));
    fields.right = creativeOfSlot(creatives, QLatin1StringView("right"));
    return fields;
}

std::span<const ReplyKey> replyKeys() {
    return kReplyKeys;
}

std::span<const CreativeKey> creativeKeys() {
    return kCreativeKeys;
}

} // namespace brimlet
