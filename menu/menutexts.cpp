#include "menu/menutexts.h"

#include "host/money.h"

namespace brimlet {

QString eurosShort(std::int64_t cents) {
    if (cents % 100 == 0) {
        return QStringLiteral("€") + QString::number(cents / 100);
    }
    return eurosWithCents(cents);
}

QString earningsText(std::int64_t estimatedCents) {
    return QStringLiteral("You'll earn ") + eurosShort(estimatedCents) +
           QStringLiteral(" this week");
}

QString recordedText(std::int64_t liveBucketsToday, std::int64_t liveBucketsNeeded,
                     std::int64_t liveDaysThisWeek) {
    return QStringLiteral("Recorded ") + QString::number(liveBucketsToday) + QStringLiteral("/") +
           QString::number(liveBucketsNeeded) + QStringLiteral(" live windows today · ") +
           QString::number(liveDaysThisWeek) + QStringLiteral(" live days this week");
}

QString splitText(std::int64_t liveHostCount) {
    const QString text = QStringLiteral("Split with ") + QString::number(liveHostCount) +
                         QStringLiteral(" live host");
    return liveHostCount == 1 ? text : text + QStringLiteral("s");
}

QString bankedText(std::int64_t pendingStipendCents) {
    return QStringLiteral("Banked ") + eurosWithCents(pendingStipendCents) +
           QStringLiteral(". Cash-out at €15 via Stripe or PayPal.");
}

} // namespace brimlet
