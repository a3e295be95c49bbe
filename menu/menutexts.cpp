#include "menu/menutexts.h"

#include "host/money.h"

#include <QCoreApplication>

namespace brimlet {
namespace {

/// Translates in the view's context. Its arguments are literals, or lupdate does not find them.
struct Localized final {
    Q_DECLARE_TR_FUNCTIONS(brimlet::HostMenuView)
};

} // namespace

QString eurosShort(std::int64_t cents) {
    if (cents % 100 == 0) {
        return QStringLiteral("€") + QString::number(cents / 100);
    }
    return eurosWithCents(cents);
}

QString earningsText(std::int64_t estimatedCents) {
    return Localized::tr("You'll earn %1 this week").arg(eurosShort(estimatedCents));
}

QString recordedText(std::int64_t liveBucketsToday, std::int64_t liveBucketsNeeded,
                     std::int64_t liveDaysThisWeek) {
    return Localized::tr("Recorded %1/%2 live windows today · %3 live days this week")
        .arg(QString::number(liveBucketsToday), QString::number(liveBucketsNeeded),
             QString::number(liveDaysThisWeek));
}

QString splitText(std::int64_t liveHostCount) {
    return (liveHostCount == 1 ? Localized::tr("Split with %1 live host")
                               : Localized::tr("Split with %1 live hosts"))
        .arg(QString::number(liveHostCount));
}

QString bankedText(std::int64_t pendingStipendCents) {
    return Localized::tr("Banked %1. Cash-out at €15 via Stripe or PayPal.")
        .arg(eurosWithCents(pendingStipendCents));
}

} // namespace brimlet
