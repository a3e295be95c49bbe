#include "host/statusline.h"

#include "host/money.h"

namespace brimlet::statusline {

QString loading() {
    return QStringLiteral("Loading the live placement…");
}

QString paused() {
    return QStringLiteral("Paused 24h. You may drop out of this week's split.");
}

QString notchedOnly() {
    return QStringLiteral("Notched MacBooks only.");
}

QString displayFailed() {
    return QStringLiteral("Could not load the live placement. Will retry.");
}

QString heartbeatFailed() {
    return QStringLiteral("Heartbeat failed. Will retry.");
}

QString tokenRejected() {
    return QStringLiteral("Server rejected the host token.");
}

QString afterDisplayReply(bool inApplications, bool adsVisible, bool hasToken) {
    if (!inApplications) {
        return QStringLiteral("Ads are on. Move Brimlet to Applications to qualify for payouts.");
    }
    if (!adsVisible) {
        return QStringLiteral("No live placement right now.");
    }
    if (!hasToken) {
        return QStringLiteral("Ads on. Add your approved host token to qualify for payouts.");
    }
    return QStringLiteral("Ads on. Checking payout eligibility…");
}

QString afterHostReply(bool inApplications, bool agreed, bool adsVisible,
                       std::int64_t estimatedCents) {
    if (!inApplications) {
        return QStringLiteral("Drag Brimlet into Applications. Live time only counts from there.");
    }
    if (!agreed) {
        return QStringLiteral("Sign the host agreement. Pay is an estimate, not a guarantee.");
    }
    const QString start =
        adsVisible ? QStringLiteral("Ads on. This week ~") : QStringLiteral("Ads off. This week ~");
    return start + eurosWithCents(estimatedCents) + QStringLiteral(" estimate.");
}

} // namespace brimlet::statusline
