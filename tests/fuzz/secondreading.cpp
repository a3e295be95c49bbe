#include "tests/fuzz/secondreading.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace brimlet {
namespace {

/// Qt reads every number with a point or an exponent as a double. With no more digits than this and
/// below the limit, a double is exact enough to tell whole numbers from others.
constexpr int kExactDigits = 15;
constexpr double kExactLimit = 9007199254740992.0;

bool hasLongNumber(const QByteArray& body) {
    int digits = 0;
    for (const char c : body) {
        if (c >= '0' && c <= '9') {
            if (++digits > kExactDigits) {
                return true;
            }
        } else if (c != '.') {
            digits = 0;
        }
    }
    return false;
}

/// The reply's top level as Qt reads it.
class SecondReading final {
public:
    explicit SecondReading(const QByteArray& body)
        : m_object(QJsonDocument::fromJson(body).object())
        , m_canCompare(!m_object.isEmpty() && !body.contains("\xEF\xBB\xBF"))
        , m_areNumbersExact(!hasLongNumber(body)) {}

    /// Qt drops a byte-order mark from the start of any text and key, and refuses deep nesting. An
    /// empty object usually means that it refused the body.
    [[nodiscard]] bool canCompare() const { return m_canCompare; }

    [[nodiscard]] bool agrees(const char* key, std::int64_t ours, std::int64_t otherwise) const {
        const QJsonValue value = m_object.value(QLatin1StringView(key));
        if (!value.isDouble()) {
            return ours == otherwise;
        }
        const double number = value.toDouble();
        const bool isExact = m_areNumbersExact && number != 0 && std::abs(number) < kExactLimit;
        if (!isExact) {
            return ours == otherwise || static_cast<double>(ours) == number;
        }
        const bool isWhole = std::trunc(number) == number;
        return ours == (isWhole ? static_cast<std::int64_t>(number) : otherwise);
    }

    [[nodiscard]] bool agrees(const char* key, bool ours, bool otherwise) const {
        const QJsonValue value = m_object.value(QLatin1StringView(key));
        if (!value.isDouble()) {
            return ours == value.toBool(otherwise);
        }
        const double number = value.toDouble();
        const bool isNeither = number != 0 && number != 1;
        return ours == otherwise || (!isNeither && ours == (number == 1));
    }

    [[nodiscard]] bool agrees(const char* key, const QString& ours,
                              const QString& otherwise) const {
        return ours == m_object.value(QLatin1StringView(key)).toString(otherwise);
    }

    [[nodiscard]] bool agrees(QLatin1StringView slot,
                              const std::optional<SlotCreative>& ours) const {
        const QJsonArray list = m_object.value(QLatin1StringView("creatives")).toArray();
        const bool areObjects = std::all_of(
            list.begin(), list.end(), [](const QJsonValue& value) { return value.isObject(); });
        const auto found = std::find_if(list.begin(), list.end(), [slot](const QJsonValue& value) {
            return value[QLatin1StringView("slotId")].toString() == slot;
        });
        if (!areObjects || found == list.end()) {
            return !ours;
        }
        return ours && isSame(*ours, *found);
    }

private:
    static bool isSame(const SlotCreative& ours, const QJsonValue& theirs) {
        const auto text = [&theirs](const char* key) {
            return theirs[QLatin1StringView(key)].toString();
        };
        const bool hasCopy = theirs[QLatin1StringView("copy")].isString();
        return ours.brandName == text("brandName") &&
               ours.tagline == text(hasCopy ? "copy" : "tagline") &&
               ours.assetURL == Url::fromString(text("assetUrl")) &&
               ours.brandURL == Url::fromString(text("brandUrl"));
    }

    QJsonObject m_object;
    bool m_canCompare;
    bool m_areNumbersExact;
};

QByteArray differenceInPlacement(const SecondReading& second, const Assignment& a) {
    if (!second.agrees("weekStatus", a.weekStatus, QStringLiteral("unfilled"))) {
        return "Qt reads another weekStatus";
    }
    if (!second.agrees("forceHide", a.forceHide, false)) {
        return "Qt reads another forceHide";
    }
    if (!second.agrees(QLatin1StringView("left"), a.left)) {
        return "Qt reads another left creative";
    }
    if (!second.agrees(QLatin1StringView("right"), a.right)) {
        return "Qt reads another right creative";
    }
    return {};
}

} // namespace

QByteArray secondReadingOfDisplay(const QByteArray& body, const Assignment& assignment) {
    const SecondReading second(body);
    return second.canCompare() ? differenceInPlacement(second, assignment) : QByteArray();
}

QByteArray secondReadingOfHost(const QByteArray& body, const Assignment& a,
                               const QString& agreementBefore) {
    const SecondReading second(body);
    if (!second.canCompare()) {
        return {};
    }
    const bool areFiguresSame = second.agrees("estimatedCents", a.estimatedCents, 0) &&
                                second.agrees("pendingStipendCents", a.pendingStipendCents, 0) &&
                                second.agrees("liveHostCount", a.liveHostCount, 0) &&
                                second.agrees("liveDaysThisWeek", a.liveDaysThisWeek, 0) &&
                                second.agrees("liveBucketsToday", a.liveBucketsToday, 0) &&
                                second.agrees("liveBucketsNeeded", a.liveBucketsNeeded, 4);
    if (!areFiguresSame) {
        return "Qt reads another figure";
    }
    if (!second.agrees("agreed", a.agreed, false) ||
        !second.agrees("fromApplications", a.fromApplications, true)) {
        return "Qt reads another yes or no";
    }
    if (!second.agrees("agreementText", a.agreementText, agreementBefore)) {
        return "Qt reads another agreement";
    }
    return differenceInPlacement(second, a);
}

} // namespace brimlet
