#include "menu/menutexts.h"

#include "host/money.h"

#include <QCoreApplication>

namespace brimlet {
namespace {

/// Translated into the user's language, if there is a translation.
QString localized(const char* text) {
    return QCoreApplication::translate("HostMenuView", text);
}

} // namespace

QString eurosShort(std::int64_t cents) {
    if (cents % 100 == 0) {
        return QStringLiteral("€") + QString::number(cents / 100);
    }
    return eurosWithCents(cents);
}

QString earningsText(std::int64_t estimatedCents) {
    return localized("You'll earn %1 this week").arg(eurosShort(estimatedCents));
}

QString recordedText(std::int64_t liveBucketsToday, std::int64_t liveBucketsNeeded,
                     std::int64_t liveDaysThisWeek) {
    return localized("Recorded %1/%2 live windows today · %3 live days this week")
        .arg(QString::number(liveBucketsToday), QString::number(liveBucketsNeeded),
             QString::number(liveDaysThisWeek));
}

QString splitText(std::int64_t liveHostCount) {
    return (liveHostCount == 1 ? localized("Split with %1 live host")
                               : localized("Split with %1 live hosts"))
        .arg(QString::number(liveHostCount));
}

QString bankedText(std::int64_t pendingStipendCents) {
    return localized("Banked %1. Cash-out at €15 via Stripe or PayPal.")
        .arg(eurosWithCents(pendingStipendCents));
}

} // namespace brimlet
