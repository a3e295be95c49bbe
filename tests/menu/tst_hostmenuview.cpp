#include "menu/hosttheme.h"
#include "tests/menu/shownmenu.h"
#include "tests/support/paintcounter.h"
#include "tests/support/testprogram.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QLineEdit>
#include <QPalette>
#include <QSignalSpy>

using namespace brimlet;

namespace {

const QString kAgree = QStringLiteral("I agree · not a guarantee");
const QString kSave = QStringLiteral("Save token");
const QString kPause = QStringLiteral("Pause ads 24h");
const QString kQuit = QStringLiteral("Quit");
const QString kField = QStringLiteral("Host token");
const QString kNotched = QStringLiteral("Notched MacBooks only.");
const QString kApplications =
    QStringLiteral("Drag this app into Applications. Time only counts from there, so a copy in "
                   "Downloads cannot farm the pool.");

} // namespace

/// The menu over a store with the replies of each test.
class TestHostMenuView final : public QObject {
    Q_OBJECT

    static void press(ShownMenu& menu, const QString& name) {
        auto* const button = menu.named<QAbstractButton>(name);
        QVERIFY2(button != nullptr && button->isVisible(), qPrintable(name));
        QTest::mouseClick(button, Qt::LeftButton);
    }
    static QJsonObject week(const char* key, const QJsonValue& value) {
        return ShownMenu::with(ShownMenu::liveWeek(), key, value);
    }

private Q_SLOTS:
    void aLiveWeekShowsItsTextsInOrder() {
        ShownMenu menu;
        menu.show();
        QCOMPARE(
            menu.texts(),
            (QStringList{QStringLiteral("Brimlet"), QStringLiteral("Live"),
                         QStringLiteral("€12.34"), QStringLiteral("You'll earn €12.34 this week"),
                         QStringLiteral("Estimate, not a guarantee"), QStringLiteral("Ad status"),
                         QStringLiteral("Quiet Bicycle"), QStringLiteral("Left panel"),
                         QStringLiteral("Live"), QStringLiteral("Palindrome"),
                         QStringLiteral("Right panel"), QStringLiteral("Live"),
                         QStringLiteral("Ads on. This week ~€12.34 estimate."),
                         QStringLiteral("Recorded 2/4 live windows today · 3 live days this "
                                        "week"),
                         QStringLiteral("Split with 42 live hosts"),
                         QStringLiteral("Banked €15.00. Cash-out at €15 via Stripe or "
                                        "PayPal.")}));
    }

    void childrenAreBelowOneAnother() {
        ShownMenu menu;
        menu.openWithEverything();
        int bottom = 0;
        for (const QString& name :
             {QStringLiteral("Brimlet"),
              QStringLiteral("€12.34"),
              QStringLiteral("You'll earn €12.34 this week"),
              QStringLiteral("Estimate, not a guarantee"),
              kNotched,
              kApplications,
              QStringLiteral("Ad status"),
              QStringLiteral("Quiet Bicycle"),
              QStringLiteral("Left panel"),
              QStringLiteral("Palindrome"),
              QStringLiteral("Right panel"),
              menu.store()->statusLine(),
              QStringLiteral("Recorded 0/4 live windows today · 0 live days this week"),
              QStringLiteral("Split with 42 live hosts"),
              QStringLiteral("Banked €15.00. Cash-out at €15 via Stripe or PayPal."),
              QStringLiteral("Host agreement"),
              kAgree,
              kField,
              kSave,
              kPause,
              kQuit}) {
            const auto* const child = menu.named<QWidget>(name);
            QVERIFY2(child != nullptr, qPrintable(name));
            const int top = child->mapTo(&menu.view(), QPoint()).y();
            QVERIFY2(top >= bottom, qPrintable(name));
            bottom = top + child->height();
        }
    }

    void everyCombinationShowsItsRows_data() {
        QTest::addColumn<bool>("notch");
        QTest::addColumn<bool>("left");
        QTest::addColumn<bool>("right");
        QTest::addColumn<bool>("agreed");
        QTest::addColumn<bool>("applications");
        QTest::addColumn<int>("hosts");
        QTest::addColumn<int>("banked");
        for (int bits = 0; bits < 32; ++bits) {
            const auto bit = [bits](int place) { return (bits >> place & 1) != 0; };
            for (const int hosts : {0, 1, 2}) {
                for (const int banked : {0, 1500}) {
                    QTest::addRow("%d %d %d %d %d %d %d", bit(0), bit(1), bit(2), bit(3), bit(4),
                                  hosts, banked)
                        << bit(0) << bit(1) << bit(2) << bit(3) << bit(4) << hosts << banked;
                }
            }
        }
    }
    void everyCombinationShowsItsRows() {
        QFETCH(bool, notch);
        QFETCH(bool, left);
        QFETCH(bool, right);
        QFETCH(bool, agreed);
        QFETCH(bool, applications);
        QFETCH(int, hosts);
        QFETCH(int, banked);
        ShownMenu menu;
        if (!notch) {
            menu.host.screens.set({}, {});
        }
        Assignment& week = menu.week();
        week.weekStatus = QStringLiteral("live");
        week.estimatedCents = 1234;
        week.pendingStipendCents = banked;
        week.liveHostCount = hosts;
        week.agreed = agreed;
        week.fromApplications = applications;
        week.agreementText = QStringLiteral("The agreement.");
        if (left) {
            week.left = ShownMenu::slot(QStringLiteral("L"));
        }
        if (right) {
            week.right = ShownMenu::slot(QStringLiteral("R"));
        }
        menu.open();
        const QString live = notch ? QStringLiteral("Live") : QStringLiteral("Unfilled");
        QStringList expected{QStringLiteral("Brimlet"), live, QStringLiteral("€12.34"),
                             QStringLiteral("You'll earn €12.34 this week"),
                             QStringLiteral("Estimate, not a guarantee")};
        if (!notch) {
            expected << kNotched;
        }
        if (!applications) {
            expected << kApplications;
        }
        expected << QStringLiteral("Ad status");
        if (left) {
            expected << QStringLiteral("L") << QStringLiteral("Left panel") << live;
        }
        if (right) {
            expected << QStringLiteral("R") << QStringLiteral("Right panel") << live;
        }
        if (!left && !right) {
            expected << QStringLiteral("Unfilled") << QStringLiteral("No brand this week");
        }
        expected << menu.store()->statusLine()
                 << QStringLiteral("Recorded 0/4 live windows today · 0 live days this week");
        if (hosts > 0) {
            expected << (hosts == 1 ? QStringLiteral("Split with 1 live host")
                                    : QStringLiteral("Split with 2 live hosts"));
        }
        if (banked > 0) {
            expected << QStringLiteral("Banked €15.00. Cash-out at €15 via Stripe or PayPal.");
        }
        if (!agreed) {
            expected << QStringLiteral("The agreement.");
        }
        QCOMPARE(menu.texts(), expected);
        QCOMPARE(menu.named<QAbstractButton>(kAgree)->isVisible(), !agreed);
        for (const QString& name : {kSave, kPause, kQuit}) {
            QVERIFY(menu.named<QAbstractButton>(name)->isVisible());
        }
        QVERIFY(menu.named<QLineEdit>(kField)->isVisible());
    }

    void wholeEurosShowWithoutDecimalsInFigureAndSentence() {
        ShownMenu menu;
        menu.reply(week("estimatedCents", 1500));
        menu.show();
        QVERIFY(menu.texts().contains(QStringLiteral("€15")));
        QVERIFY(menu.texts().contains(QStringLiteral("You'll earn €15 this week")));
        menu.reply(week("estimatedCents", 1550));
        menu.poll();
        QCoreApplication::sendPostedEvents();
        QVERIFY(menu.texts().contains(QStringLiteral("€15.50")));
        QVERIFY(menu.texts().contains(QStringLiteral("You'll earn €15.50 this week")));
    }

    void theBankedLineIsHiddenForNothingAndHasTwoDecimals() {
        ShownMenu menu;
        menu.reply(week("pendingStipendCents", 0));
        menu.show();
        QVERIFY(menu.texts().filter(QStringLiteral("Banked")).isEmpty());
        menu.reply(week("pendingStipendCents", 1500));
        menu.poll();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(
            menu.texts().filter(QStringLiteral("Banked")),
            QStringList{QStringLiteral("Banked €15.00. Cash-out at €15 via Stripe or PayPal.")});
    }

    void theSplitLineIsHiddenForNoHostAndSingularForOne() {
        ShownMenu menu;
        menu.show();
        const std::array<QStringList, 3> expected{
            QStringList(), QStringList{QStringLiteral("Split with 1 live host")},
            QStringList{QStringLiteral("Split with 2 live hosts")}};
        for (int hosts = 0; hosts < 3; ++hosts) {
            menu.reply(week("liveHostCount", hosts));
            menu.poll();
            QCoreApplication::sendPostedEvents();
            QCOMPARE(menu.texts().filter(QStringLiteral("Split")),
                     expected.at(static_cast<std::size_t>(hosts)));
        }
    }

    void withBothSlotsEmptyTheCardHasASingleRow() {
        ShownMenu menu;
        menu.reply(week("creatives", QJsonArray()));
        menu.show();
        const QStringList texts = menu.texts();
        const auto title = texts.indexOf(QStringLiteral("Ad status"));
        QCOMPARE(texts.mid(title + 1, 2),
                 (QStringList{QStringLiteral("Unfilled"), QStringLiteral("No brand this week")}));
        QVERIFY(!texts.contains(QStringLiteral("Left panel")));
        QVERIFY(!texts.contains(QStringLiteral("Right panel")));
        // The only dot is the one in the title.
        QCOMPARE(texts.count(QStringLiteral("Live")), 1);
    }

    void withOnlyTheLeftSlotFilledNothingIsShownForTheRight() {
        ShownMenu menu;
        menu.reply(week("creatives", QJsonArray{ShownMenu::creative("left", "Quiet Bicycle")}));
        menu.show();
        QVERIFY(menu.texts().contains(QStringLiteral("Quiet Bicycle")));
        QVERIFY(menu.texts().contains(QStringLiteral("Left panel")));
        QVERIFY(!menu.texts().contains(QStringLiteral("Right panel")));
        QVERIFY(!menu.texts().contains(QStringLiteral("No brand this week")));
        QVERIFY(!menu.texts().contains(QStringLiteral("Unfilled")));
    }

    void aBrandWithoutANameIsCalledBrand() {
        ShownMenu menu;
        menu.reply(week("creatives", QJsonArray{ShownMenu::creative("left", "")}));
        menu.show();
        QVERIFY(menu.texts().contains(QStringLiteral("Brand")));
    }

    void signingRemovesTheAgreementAndItsButton() {
        ShownMenu menu;
        menu.reply(
            ShownMenu::with(week("agreed", false), "agreementText", QStringLiteral("Be kind.")));
        menu.show();
        QVERIFY(menu.texts().contains(QStringLiteral("Be kind.")));
        menu.reply(
            ShownMenu::with(week("agreed", true), "agreementText", QStringLiteral("Be kind.")));
        const int before = menu.view().height();
        press(menu, kAgree);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(menu.host.http.log().last(), QStringLiteral("POST /api/host/agree"));
        QVERIFY(!menu.texts().contains(QStringLiteral("Be kind.")));
        QVERIFY(!menu.named<QAbstractButton>(kAgree)->isVisible());
        QVERIFY(menu.view().height() < before);
    }

    void theAgreementButtonStaysPressableWhileItsRequestIsOutstanding() {
        ShownMenu menu;
        menu.reply(week("agreed", false));
        menu.show();
        menu.host.http.hang(QStringLiteral("/api/host/agree"));
        press(menu, kAgree);
        press(menu, kAgree);
        QCOMPARE(menu.host.http.log().count(QStringLiteral("POST /api/host/agree")), 2);
    }

    void insideApplicationsTheWarningDisappears() {
        ShownMenu menu;
        menu.reply(week("fromApplications", false));
        menu.show();
        QVERIFY(menu.texts().contains(kApplications));
        menu.reply(week("fromApplications", true));
        menu.poll();
        QCoreApplication::sendPostedEvents();
        QVERIFY(!menu.texts().contains(kApplications));
    }

    void withoutANotchANoticeFollowsTheEarnings() {
        ShownMenu menu;
        menu.host.screens.set({}, {});
        menu.show();
        const QStringList texts = menu.texts();
        QCOMPARE(texts.indexOf(kNotched),
                 texts.indexOf(QStringLiteral("Estimate, not a guarantee")) + 1);
    }

    void eachControlHasAnAccessibleNameAndRole() {
        ShownMenu menu;
        menu.reply(ShownMenu::with(week("agreed", false), "agreementText",
                                   QStringLiteral("Many words. ").repeated(100)));
        menu.show();
        int stops = 0;
        for (QWidget* const each : menu.view().findChildren<QWidget*>()) {
            if (each->focusPolicy() == Qt::NoFocus || !each->isVisible()) {
                continue;
            }
            ++stops;
            QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(each);
            QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(),
                     each->metaObject()->className());
            QVERIFY2(accessible->role() != QAccessible::Client, each->metaObject()->className());
        }
        QCOMPARE(stops, 6);
        QAccessibleInterface* const accessible =
            QAccessible::queryAccessibleInterface(&menu.view());
        QCOMPARE(accessible->role(), QAccessible::Grouping);
        QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Brimlet"));
    }

    void theDotsSayWhetherAdsShow() {
        ShownMenu menu;
        menu.show();
        QCOMPARE(menu.texts().count(QStringLiteral("Live")), 3);
        press(menu, kPause);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(menu.texts().count(QStringLiteral("Live")), 0);
        QCOMPARE(menu.texts().count(QStringLiteral("Unfilled")), 3);
        QVERIFY(menu.texts().contains(menu.store()->statusLine()));
        QVERIFY(menu.store()->isPaused());
    }

    void savingPassesTheTypedToken() {
        ShownMenu menu;
        menu.hasToken = false;
        menu.show();
        auto* const field = menu.named<QLineEdit>(kField);
        QTest::keyClicks(field, QStringLiteral("  new token  "));
        QCOMPARE(menu.store()->token(), QString()); // typing alone changes nothing
        press(menu, kSave);
        QCOMPARE(menu.store()->token(), QStringLiteral("new token"));
        QCOMPARE(std::get<QByteArray>(menu.host.keptToken()), QByteArray("new token"));
        // The field keeps the typed text until it is shown again.
        QCOMPARE(field->text(), QStringLiteral("  new token  "));
    }

    void anUntouchedFieldDoesNotDeleteATokenThatItCouldNotShow() {
        ShownMenu menu;
        menu.host.keepToken("kept-token");
        menu.host.secrets.failure = SecretError::Locked;
        menu.hasToken = false;
        menu.show();
        auto* const field = menu.named<QLineEdit>(kField);
        menu.host.http.clear();
        press(menu, kSave);
        QCOMPARE(menu.host.secrets.replacements, 1); // the one of keepToken()
        QVERIFY(menu.host.http.requests().empty());
        // It arrives while the panel is open.
        menu.host.secrets.recover();
        press(menu, kSave); // before the field shows it
        QCOMPARE(menu.host.secrets.replacements, 1);
        QCoreApplication::sendPostedEvents();
        QCOMPARE(field->text(), QStringLiteral("kept-token"));
        press(menu, kSave);
        QCOMPARE(std::get<QByteArray>(menu.host.keptToken()), QByteArray("kept-token"));
    }

    void aFieldEmptiedByHandDeletesATokenThatItCouldNotShow() {
        ShownMenu menu;
        menu.host.keepToken("kept-token");
        menu.host.secrets.failure = SecretError::TimedOut;
        menu.hasToken = false;
        menu.show();
        auto* const field = menu.named<QLineEdit>(kField);
        QTest::keyClicks(field, QStringLiteral("x"));
        QTest::keyClick(field, Qt::Key_Backspace);
        press(menu, kSave);
        QCOMPARE(menu.host.secrets.replacements, 2);
    }

    void aDraftSetByAssistiveTechnologyIsSavedBeforeTheTokenIsKnown() {
        ShownMenu menu;
        menu.host.secrets.failure = SecretError::Unavailable;
        menu.hasToken = false;
        menu.show();
        auto* const field = menu.named<QLineEdit>(kField);
        field->setText(QStringLiteral("new")); // as Qt's accessible text interface does
        press(menu, kSave);
        QCOMPARE(menu.store()->token(), QStringLiteral("new"));
    }

    void aLateTokenLeavesADraftAlone() {
        ShownMenu menu;
        menu.host.keepToken("kept-token");
        menu.host.secrets.failure = SecretError::TimedOut;
        menu.hasToken = false;
        menu.show();
        auto* const field = menu.named<QLineEdit>(kField);
        QTest::keyClicks(field, QStringLiteral("new"));
        menu.host.secrets.recover();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(field->text(), QStringLiteral("new"));
        press(menu, kSave);
        QCOMPARE(std::get<QByteArray>(menu.host.keptToken()), QByteArray("new"));
    }

    void theDraftIsReplacedEachTimeTheFieldIsShown() {
        ShownMenu menu;
        menu.show();
        auto* const field = menu.named<QLineEdit>(kField);
        QCOMPARE(field->text(), QStringLiteral("kept-token"));
        QTest::keyClicks(field, QStringLiteral("-and-more"));
        QCOMPARE(field->text(), QStringLiteral("kept-token-and-more"));
        menu.poll(); // a reply does not touch it
        QCoreApplication::sendPostedEvents();
        QCOMPARE(field->text(), QStringLiteral("kept-token-and-more"));
        menu.view().hide();
        menu.view().show();
        QCOMPARE(field->text(), QStringLiteral("kept-token"));
    }

    void theQuitButtonEmitsASignal() {
        ShownMenu menu;
        menu.show();
        const QSignalSpy asked(&menu.view(), &HostMenuView::quitRequested);
        press(menu, kQuit);
        QCOMPARE(asked.count(), 1);
    }

    void tabMovesFromTopToBottomAndKeysPress() {
        ShownMenu menu;
        menu.reply(ShownMenu::with(week("agreed", false), "agreementText",
                                   QStringLiteral("Many words. ").repeated(100)));
        menu.show();
        QVERIFY(QTest::qWaitForWindowActive(menu.view().window()));
        menu.view().setFocus();
        QStringList visited;
        for (int i = 0; i < 6; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            visited << QApplication::focusWidget()->accessibleName();
        }
        QCOMPARE(visited, (QStringList{QStringLiteral("Host agreement"), kAgree, kField, kSave,
                                       kPause, kQuit}));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        QCOMPARE(QApplication::focusWidget()->accessibleName(), kPause);

        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter}) {
            const QSignalSpy asked(&menu.view(), &HostMenuView::quitRequested);
            auto* const quit = menu.named<QAbstractButton>(kQuit);
            quit->setFocus();
            QTest::keyClick(quit, key);
            QCOMPARE(asked.count(), 1);
        }
    }

    void itIsAlways320PointsWideAndAsHighAsItsContent() {
        ShownMenu menu;
        menu.show();
        QCOMPARE(menu.view().width(), 320);
        const int full = menu.view().height();
        menu.reply(week("creatives", QJsonArray()));
        menu.poll();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(menu.view().width(), 320);
        QVERIFY(menu.view().height() < full);
        menu.reply(ShownMenu::liveWeek());
        menu.poll();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(menu.view().height(), full);
        menu.reply(week("creatives", QJsonArray{ShownMenu::creative(
                                         "left", QStringLiteral("Wide ").repeated(5000))}));
        menu.poll();
        QCoreApplication::sendPostedEvents();
        QCOMPARE(menu.view().width(), 320);
        QVERIFY(menu.view().height() < 2 * full);
    }

    void theLastChildEndsSixteenPointsAboveTheLowerEdge() {
        ShownMenu menu;
        menu.show();
        const auto* const quit = menu.named<QAbstractButton>(kQuit);
        const QRect place(quit->mapTo(&menu.view(), QPoint()), quit->size());
        QCOMPARE(place.x(), 16);
        QCOMPARE(place.width(), 288);
        QCOMPARE(place.y() + place.height(), menu.view().height() - 16);
        const auto* const pause = menu.named<QAbstractButton>(kPause);
        QCOMPARE(place.y() - (pause->mapTo(&menu.view(), QPoint()).y() + pause->height()), 14);
    }

    void itIsRebuiltOncePerTurn() {
        ShownMenu menu;
        menu.show();
        QVERIFY(QTest::qWaitForWindowExposed(menu.view().window()));
        QCoreApplication::sendPostedEvents();
        PaintCounter counter(menu.view());
        for (int i = 0; i < 20; ++i) {
            menu.reply(week("estimatedCents", 2000 + i));
            menu.poll();
        }
        QVERIFY(!menu.texts().contains(QStringLiteral("€20.19")));
        QCoreApplication::sendPostedEvents();
        QVERIFY(menu.texts().contains(QStringLiteral("€20.19")));
        QTRY_VERIFY(counter.paints > 0);
        QCOMPARE(counter.paints, 1);
    }

    void anEqualReplyPaintsNothing() {
        ShownMenu menu;
        menu.show();
        QVERIFY(QTest::qWaitForWindowExposed(menu.view().window()));
        QCoreApplication::sendPostedEvents();
        PaintCounter counter(menu.view());
        for (int i = 0; i < 20; ++i) {
            menu.poll();
            QCoreApplication::sendPostedEvents();
        }
        QCOMPARE(counter.paints, 0);
    }

    void whileHiddenItDoesNotUpdate() {
        ShownMenu menu;
        menu.show();
        menu.view().hide();
        menu.reply(week("estimatedCents", 9900));
        menu.poll();
        QCoreApplication::sendPostedEvents();
        QVERIFY(!menu.texts().contains(QStringLiteral("€99")));
        menu.view().show();
        QVERIFY(menu.texts().contains(QStringLiteral("€99")));
    }

    void untrustedMarkupKeepsItsTags() {
        const QString markup = QStringLiteral("<b>Bold</b> <img src='file:///etc/passwd'> &amp;");
        ShownMenu menu;
        menu.reply(ShownMenu::with(ShownMenu::with(week("agreed", false), "agreementText", markup),
                                   "creatives", QJsonArray{ShownMenu::creative("left", markup)}));
        menu.show();
        QCOMPARE(menu.texts().count(markup), 2);
    }

    void theDesktopsColoursAreNotUsed() {
        ShownMenu menu;
        menu.show();
        const QImage before = menu.picture(1);
        QPalette light(Qt::black, Qt::yellow, Qt::white, Qt::gray, Qt::lightGray, Qt::red, Qt::red,
                       Qt::white, Qt::white);
        const QPalette usual = QGuiApplication::palette();
        QApplication::setPalette(light);
        QCoreApplication::sendPostedEvents();
        const QImage after = menu.picture(1);
        QApplication::setPalette(usual);
        QVERIFY(before == after);
        ShownMenu other;
        QApplication::setPalette(light);
        other.show();
        const QImage fresh = other.picture(1);
        QApplication::setPalette(usual);
        QVERIFY(before == fresh);
    }
};

BRIMLET_TEST(TestHostMenuView, QApplication)
#include "tst_hostmenuview.moc"
