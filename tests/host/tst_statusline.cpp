#include "host/statusline.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

class TestStatusLine final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theTextsAreExact_data() {
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const QString& shown, const QString& text) {
            QTest::newRow(name) << shown << text;
        };
        row("loading", statusline::loading(), QStringLiteral("Loading the live placement\u2026"));
        row("paused", statusline::paused(),
            QStringLiteral("Paused 24h. You may drop out of this week's split."));
        row("no notch", statusline::notchedOnly(), QStringLiteral("Notched MacBooks only."));
        row("display failed", statusline::displayFailed(),
            QStringLiteral("Could not load the live placement. Will retry."));
        row("heartbeat failed", statusline::heartbeatFailed(),
            QStringLiteral("Heartbeat failed. Will retry."));
        row("rejected", statusline::tokenRejected(),
            QStringLiteral("Server rejected the host token."));
    }
    void theTextsAreExact() {
        QFETCH(QString, shown);
        QTEST(shown, "text");
    }

    void afterADisplayReplyTheLineSaysHowToQualify_data() {
        QTest::addColumn<bool>("inApplications");
        QTest::addColumn<bool>("adsVisible");
        QTest::addColumn<bool>("hasToken");
        QTest::addColumn<QString>("line");
        const auto move =
            QStringLiteral("Ads are on. Move Brimlet to Applications to qualify for payouts.");
        QTest::newRow("outside, hidden, no token") << false << false << false << move;
        QTest::newRow("outside, hidden, token") << false << false << true << move;
        QTest::newRow("outside, visible, no token") << false << true << false << move;
        QTest::newRow("outside, visible, token") << false << true << true << move;
        const auto none = QStringLiteral("No live placement right now.");
        QTest::newRow("hidden, no token") << true << false << false << none;
        QTest::newRow("hidden, token") << true << false << true << none;
        QTest::newRow("visible, no token")
            << true << true << false
            << QStringLiteral("Ads on. Add your approved host token to qualify for payouts.");
        QTest::newRow("visible, token")
            << true << true << true << QStringLiteral("Ads on. Checking payout eligibility\u2026");
    }
    void afterADisplayReplyTheLineSaysHowToQualify() {
        QFETCH(bool, inApplications);
        QFETCH(bool, adsVisible);
        QFETCH(bool, hasToken);
        QTEST(statusline::afterDisplayReply(inApplications, adsVisible, hasToken), "line");
    }

    void afterAHostReplyTheLineShowsTheEstimate_data() {
        QTest::addColumn<bool>("inApplications");
        QTest::addColumn<bool>("agreed");
        QTest::addColumn<bool>("adsVisible");
        QTest::addColumn<QString>("line");
        const auto drag =
            QStringLiteral("Drag Brimlet into Applications. Live time only counts from there.");
        QTest::newRow("outside, not agreed, hidden") << false << false << false << drag;
        QTest::newRow("outside, not agreed, visible") << false << false << true << drag;
        QTest::newRow("outside, agreed, hidden") << false << true << false << drag;
        QTest::newRow("outside, agreed, visible") << false << true << true << drag;
        const auto sign =
            QStringLiteral("Sign the host agreement. Pay is an estimate, not a guarantee.");
        QTest::newRow("not agreed, hidden") << true << false << false << sign;
        QTest::newRow("not agreed, visible") << true << false << true << sign;
        QTest::newRow("agreed, visible")
            << true << true << true << QStringLiteral("Ads on. This week ~€12.34 estimate.");
        QTest::newRow("agreed, hidden")
            << true << true << false << QStringLiteral("Ads off. This week ~€12.34 estimate.");
    }
    void afterAHostReplyTheLineShowsTheEstimate() {
        QFETCH(bool, inApplications);
        QFETCH(bool, agreed);
        QFETCH(bool, adsVisible);
        QTEST(statusline::afterHostReply(inApplications, agreed, adsVisible, 1234), "line");
    }
};

BRIMLET_TEST(TestStatusLine, brimlet::NoApplication)
#include "tst_statusline.moc"
