#include "creative/notchfont.h"
#include "creative/textline.h"
#include "tests/overlay/shownoverlay.h"
#include "tests/support/pngbytes.h"
#include "tests/support/testprogram.h"

#include <QAccessible>
#include <QApplication>
#include <QPaintEvent>
#include <QSignalSpy>
#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

constexpr const char* kLeft =
    "{\"slotId\":\"left\",\"brandName\":\"Left\",\"tagline\":\"A tagline much too wide for it\","
    "\"assetUrl\":\"https://l.test/l.png\",\"brandUrl\":\"https://l.test/\"}";
constexpr const char* kRight =
    "{\"slotId\":\"right\",\"brandName\":\"Right\",\"brandUrl\":\"http://r.test/\"}";

QByteArray reply(std::initializer_list<const char*> creatives) {
    QByteArrayList list;
    for (const char* creative : creatives) {
        list << creative;
    }
    return "{\"weekStatus\":\"live\",\"creatives\":[" + list.join(',') + "]}";
}

const QByteArray kBoth = reply({kLeft, kRight});

struct ViewFixture final : ShownOverlay {
    ViewFixture() { host.http.answer(QStringLiteral("l.png"), 200, pngOf(Qt::red)); }
};

/// Records each painted area from now on with the class of its widget.
class PaintLog final : public QObject {
public:
    explicit PaintLog(OverlayView& view) {
        (void)QTest::qWaitForWindowExposed(&view);
        QCoreApplication::processEvents(); // paints what is due already
        view.installEventFilter(this);
        for (NotchPill* pill : view.findChildren<NotchPill*>()) {
            pill->installEventFilter(this);
        }
    }
    /// The areas painted since the last call.
    QStringList take() {
        QCoreApplication::processEvents(); // rebuilds
        QCoreApplication::processEvents(); // paints what was rebuilt
        return std::exchange(m_paints, {});
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            const QRect area = static_cast<QPaintEvent*>(event)->region().boundingRect();
            m_paints << QStringLiteral("%1 %2,%3 %4x%5")
                            .arg(QLatin1StringView(watched->metaObject()->className()))
                            .arg(area.x())
                            .arg(area.y())
                            .arg(area.width())
                            .arg(area.height());
        }
        return false;
    }

private:
    QStringList m_paints;
};

} // namespace

class TestView final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void twoCapsulesStandBesideTheGap() {
        ViewFixture f;
        f.show(kBoth);
        QCOMPARE(f.left()->geometry(), QRect(8, 1, 108, 24));
        QCOMPARE(f.right()->geometry(), QRect(312, 1, 108, 24));
        // The gap, the margins and the capsules' corners are not painted.
        QVERIFY(f.view.painted().contains(QPoint(8 + 54, 13)));
        QVERIFY(f.view.painted().contains(QPoint(312 + 54, 13)));
        QVERIFY(!f.view.painted().contains(QPoint(214, 13)));
        QVERIFY(!f.view.painted().contains(QPoint(8, 1)));
        QCOMPARE(f.view.painted().boundingRect(), QRectF(8, 1, 412, 24));
    }

    void pillsOfDifferentWidthsShiftTheGap() {
        ViewFixture f;
        f.show(reply({kRight}));
        // The row of 36, gap and 108 points is centred, so the gap is 36 points further left.
        QCOMPARE(f.right()->geometry().left(), 428 / 2 - 36 + 92 + 6);
        QVERIFY(!f.left()->isVisible());
        QVERIFY(f.right()->isVisible());
    }

    void aCreativeWithoutTextIsACompactPillWithItsMarkAlone() {
        ViewFixture f;
        f.show(reply({"{\"slotId\":\"left\",\"assetUrl\":\"https://l.test/l.png\"}"}));
        QCOMPARE(f.left()->size(), QSize(36, 24));
        QVERIFY(f.left()->mark().image());
        QCOMPARE(f.left()->line().line(), QString());
        (void)f.picture();
        QCOMPARE(f.left()->strip().box.width(), 1);
    }

    void theLineFillsTheRestBesideTheMark() {
        ViewFixture f;
        f.show(kBoth);
        (void)f.picture();
        QCOMPARE(f.left()->strip().box.width(), 108 - 7 - 16 - 5 - 7);
    }

    void onlyAllowedLinksTakeClicks() {
        ViewFixture f;
        f.show(kBoth);
        QCOMPARE(f.view.clickable().boundingRect(), QRectF(8, 1, 108, 24));
        QTest::mouseClick(f.left(), Qt::LeftButton);
        QCOMPARE(f.host.workspace.opened, std::vector<QString>{QStringLiteral("https://l.test/")});
        QTest::mouseClick(f.right(), Qt::LeftButton);
        QTest::mouseClick(f.left(), Qt::RightButton);
        QCOMPARE(f.host.workspace.opened.size(), std::size_t{1});
    }

    void aClickReleasedOutsideOpensNothing() {
        ViewFixture f;
        f.show(kBoth);
        QTest::mousePress(f.left(), Qt::LeftButton);
        QTest::mouseRelease(f.left(), Qt::LeftButton, {}, QPoint(300, 10));
        QVERIFY(f.host.workspace.opened.empty());
    }

    void aPillWithARefusedLinkCannotBeClicked_data() {
        QTest::addColumn<QByteArray>("link");
        QTest::newRow("not encrypted") << QByteArray("\"brandUrl\":\"http://r.test/\"");
        QTest::newRow("in capitals") << QByteArray("\"brandUrl\":\"HTTPS://r.test/\"");
        QTest::newRow("a script") << QByteArray("\"brandUrl\":\"javascript:alert(1)\"");
        QTest::newRow("none") << QByteArray("\"copy\":\"\"");
    }
    void aPillWithARefusedLinkCannotBeClicked() {
        QFETCH(QByteArray, link);
        ViewFixture f;
        f.show(reply({("{\"slotId\":\"left\",\"brandName\":\"B\"," + link + "}").constData()}));
        QVERIFY(f.left()->isVisible());
        QVERIFY(!f.left()->isClickable());
        QVERIFY(f.view.clickable().isEmpty());
        QCOMPARE(f.left()->toolTip(), QString());
        QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
        QCoreApplication::sendEvent(f.left(), &enter);
        QCOMPARE(f.left()->cursor().shape(), Qt::ArrowCursor);
        QTest::mouseClick(f.left(), Qt::LeftButton);
        QVERIFY(f.host.workspace.opened.empty());
    }

    void hoveringSetsTheHandCursorAndLeavingTheArrow() {
        ViewFixture f;
        f.show(kBoth);
        QEnterEvent enter({5, 5}, {5, 5}, {5, 5});
        QCoreApplication::sendEvent(f.left(), &enter);
        QCOMPARE(f.left()->cursor().shape(), Qt::PointingHandCursor);
        QEvent leave(QEvent::Leave);
        QCoreApplication::sendEvent(f.left(), &leave);
        QCOMPARE(f.left()->cursor().shape(), Qt::ArrowCursor);
        // The arrow returns when the link is removed under the pointer.
        QCoreApplication::sendEvent(f.left(), &enter);
        f.show(reply({"{\"slotId\":\"left\",\"brandName\":\"Left\"}", kRight}));
        QCOMPARE(f.left()->cursor().shape(), Qt::ArrowCursor);
    }

    void theTooltipNamesTheHost() {
        ViewFixture f;
        f.show(kBoth);
        QVERIFY(f.left()->toolTip().contains(QStringLiteral(">l.test<")));
    }

    void withoutCreativesNothingIsPaintedOrClickable() {
        ViewFixture f;
        f.show(reply({}));
        QVERIFY(f.runtime.visible());
        QVERIFY(f.view.painted().isEmpty());
        QVERIFY(f.view.clickable().isEmpty());
        // Two slots of 36 beside the gap.
        QCOMPARE(f.left()->geometry(), QRect(428 / 2 - 92 - 6 - 36, 1, 36, 24));
        QCOMPARE(f.right()->geometry(), QRect(428 / 2 + 92 + 6, 1, 36, 24));
    }

    void hiddenAdsAreNeitherPaintedNorClickable() {
        ViewFixture f;
        f.show(kBoth);
        f.store->pause24h();
        f.render();
        QVERIFY(f.view.painted().isEmpty());
        QVERIFY(f.view.clickable().isEmpty());
        QVERIFY(!f.left()->isVisible());
        QCOMPARE(f.left()->geometry(), QRect(8, 1, 108, 24)); // placed as if it were visible
    }

    void nothingRunsWhileThePanelIsHidden() {
        ViewFixture f;
        f.show(kBoth);
        f.host.clock.advance(18s);
        QVERIFY(f.left()->line().offsetOnScreen() < 0);
        f.view.hide();
        QCOMPARE(f.host.clock.runningSleeps(), 0);
        QCOMPARE(f.host.clock.runningTimers(), 0);
        f.show(reply({"{\"slotId\":\"left\",\"brandName\":\"X\",\"tagline\":\"Y\"}"}));
        QCOMPARE(f.host.clock.runningSleeps(), 0);
        f.view.show();
        QCOMPARE(f.host.clock.runningSleeps(), 1);
        QCOMPARE(f.left()->line().line(), QStringLiteral("X"));
    }

    void thePillsTimes() {
        ViewFixture f;
        f.show(kBoth);
        const TextLine tagline(QStringLiteral("A tagline much too wide for it"), NotchFont::pill());
        const double overflow = tagline.width() - 73;
        const NotchPill& pill = *f.left();
        const auto state = [&pill] {
            return std::pair(pill.line().showingTagline(), pill.line().offsetOnScreen());
        };
        const std::pair brand(false, 0);
        const std::pair start(true, 0);
        // Half a point may be rounded either way.
        const auto isAtEnd = [&] {
            return state().first && qAbs(state().second + overflow) < 0.75;
        };
        const auto distance = [&] {
            return QStringLiteral("at %1 instead of %2")
                .arg(state().second)
                .arg(-overflow)
                .toUtf8();
        };
        QCOMPARE(state(), brand);
        f.host.clock.advance(15999ms);
        QCOMPARE(state(), brand);
        f.host.clock.advance(1ms);
        QCOMPARE(state(), start);
        f.host.clock.advance(1600ms);
        QCOMPARE(state(), start);
        const auto scroll = sleepLength(overflow / 22) + 1ns; // that was rounded down
        f.host.clock.advance(scroll - 46ms);
        QVERIFY(state().second < 0 && !isAtEnd());
        f.host.clock.advance(46ms);
        QVERIFY2(isAtEnd(), distance().constData());
        f.host.clock.advance(1399ms);
        QVERIFY2(isAtEnd(), distance().constData());
        f.host.clock.advance(2ms);
        QCOMPARE(state(), start);
        f.host.clock.advance(348ms);
        QCOMPARE(state(), start);
        f.host.clock.advance(2ms);
        QCOMPARE(state(), brand);
    }

    void nothingRunsUnderReduceMotion() {
        ViewFixture f;
        f.reduceMotion.set(true);
        f.show(kBoth);
        QCOMPARE(f.host.clock.runningSleeps(), 0);
        PaintLog paints(f.view);
        (void)paints.take();
        f.host.clock.advance(1h);
        QCOMPARE(paints.take(), QStringList());
    }

    void anEmptiedSlotForgetsItsPicture() {
        ViewFixture f;
        f.show(kBoth);
        QVERIFY(f.left()->mark().image());
        f.show(reply({kRight}));
        QVERIFY(!f.left()->mark().image());
        f.show(reply({"{\"slotId\":\"left\",\"brandName\":\"New\"}", kRight}));
        QVERIFY(!f.left()->mark().image());
    }

    void aNewCreativeKeepsTheOldPictureUntilItsOwnIsLoaded() {
        ViewFixture f;
        f.show(kBoth);
        f.show(reply({"{\"slotId\":\"left\",\"brandName\":\"New\","
                      "\"assetUrl\":\"https://l.test/slow.png\"}"}));
        QVERIFY(f.left()->mark().image());
        f.host.http.resolve(f.host.http.requests().size() - 1, HttpReply{404, {}});
        QVERIFY(!f.left()->mark().image());
    }

    void aCreativeChangedWhileHiddenNeverStandsBesideTheOldPicture() {
        ViewFixture f;
        f.host.http.answer(QStringLiteral("n.png"), HttpReply{200, pngOf(Qt::blue)}, 2s);
        f.show(kBoth);
        const char* const creative =
            "{\"slotId\":\"left\",\"brandName\":\"New\",\"tagline\":\"Much too wide a tagline "
            "for it\",\"assetUrl\":\"https://l.test/n.png\"}";
        QByteArray hidden = reply({creative});
        hidden.replace("\"weekStatus\"", "\"forceHide\":true,\"weekStatus\"");
        f.show(reply({kLeft}).replace("\"weekStatus\"", "\"forceHide\":true,\"weekStatus\""));
        PaintLog paints(f.view);
        (void)paints.take();
        f.show(hidden);
        QCOMPARE(f.host.http.log().count(QStringLiteral("GET /n.png")), 1);
        f.host.clock.advance(1s);
        f.show(reply({creative}));
        QVERIFY(f.left()->isVisible());
        QVERIFY(!f.left()->mark().image());
        f.show(hidden);
        (void)paints.take();
        f.host.clock.advance(1s);
        QCOMPARE(f.left()->mark().image()->pixelColor(5, 5), QColor(Qt::blue));
        QCOMPARE(paints.take(), QStringList());
        QCOMPARE(f.host.clock.runningSleeps(), 0);
        f.show(reply({creative}));
        QCOMPARE(f.left()->mark().image()->pixelColor(5, 5), QColor(Qt::blue));
        QCOMPARE(f.host.http.log().count(QStringLiteral("GET /n.png")), 1);
    }

    void theFirstTimeLiveAPillShowsItsPicture() {
        ViewFixture f;
        f.show(reply({kLeft}).replace("live", "unfilled"));
        QVERIFY(!f.left()->isVisible());
        QVERIFY(f.left()->mark().image());
        QCOMPARE(f.host.clock.runningSleeps(), 0);
        f.show(reply({kLeft}));
        QVERIFY(f.left()->isVisible());
        QVERIFY(f.left()->mark().image());
        QCOMPARE(f.host.http.log().count(QStringLiteral("GET /l.png")), 1);
    }

    void aHundredPollsFetchAnImageOnce() {
        ViewFixture f;
        for (int poll = 0; poll < 100; ++poll) {
            f.show(kBoth);
        }
        QCOMPARE(f.host.http.log().count(QStringLiteral("GET /l.png")), 1);
    }

    void aRenderThatChangesNothingPaintsNothing() {
        ViewFixture f;
        f.show(kBoth);
        PaintLog paints(f.view);
        (void)paints.take();
        const QSignalSpy regions(&f.view, &OverlayView::regionsChanged);
        f.show(kBoth);
        QCOMPARE(paints.take(), QStringList());
        QCOMPARE(regions.count(), 0);
        // A change is painted, and only where it is.
        QByteArray other = kBoth;
        f.show(other.replace("\"Left\"", "\"Else\""));
        QCOMPARE(paints.take(), QStringList{QStringLiteral("brimlet::NotchPill 28,2 73x20")});
    }

    void nothingIsPaintedWhileTheTextStandsStill() {
        ViewFixture f;
        f.show(kBoth);
        PaintLog paints(f.view);
        (void)paints.take();
        f.host.clock.advance(15s);
        QCOMPARE(paints.take(), QStringList());
        f.host.clock.advance(1s);
        QCOMPARE(paints.take(), QStringList{QStringLiteral("brimlet::NotchPill 28,2 73x20")});
        f.host.clock.advance(1500ms);
        QCOMPARE(paints.take(), QStringList());
    }

    void aStepOfAScrollPaintsNoWidget() {
        ViewFixture f;
        f.show(kBoth);
        f.host.clock.advance(17600ms);
        PaintLog paints(f.view);
        (void)paints.take();
        for (int step = 0; step < 20; ++step) {
            f.host.clock.advance(46ms);
            QCOMPARE(paints.take(), QStringList());
        }
        QCOMPARE(f.left()->line().offsetOnScreen(), -20);
    }

    void aPillThatMovesTakesItsTextAlong() {
        ViewFixture f;
        f.show(kBoth);
        f.host.clock.advance(18s);
        PaintLog paints(f.view);
        const QRect before = f.left()->strip().box;
        QCOMPARE(before.topLeft(), f.left()->pos() + QPoint(28, 2));
        (void)paints.take();
        f.render(200);
        QVERIFY(paints.take().contains(QStringLiteral("brimlet::NotchPill 0,0 108x24")));
        QCOMPARE(f.left()->strip().box, before.translated(-8, 0));
        QCOMPARE(f.left()->strip().box.topLeft(), f.left()->pos() + QPoint(28, 2));
    }

    void changesAreDrawnOncePerTurn() {
        ViewFixture f;
        f.show(kBoth);
        PaintLog paints(f.view);
        (void)paints.take();
        const QSignalSpy regions(&f.view, &OverlayView::regionsChanged);
        for (const char* brand : {"\"One\"", "\"Two\"", "\"Three\""}) {
            QByteArray other = kBoth;
            f.fetch(other.replace("\"Left\"", brand).replace("http:", "https:"));
            f.runtime.apply(*f.store, 184, 32);
            QCOMPARE(regions.count(), 0);
            QCOMPARE(f.left()->line().line(), QStringLiteral("Left"));
        }
        QCOMPARE(paints.take(), QStringList{QStringLiteral("brimlet::NotchPill 28,2 73x20")});
        QCOMPARE(regions.count(), 1); // the right one can be clicked now
        QCOMPARE(f.left()->line().line(), QStringLiteral("Three"));
    }

    void theTooltipOfALinkWithoutAHostIsTheBrand() {
        ViewFixture f;
        f.show(
            reply({"{\"slotId\":\"left\",\"brandName\":\"Acme\",\"brandUrl\":\"https:///page\"}"}));
        QVERIFY(f.left()->isClickable());
        QVERIFY(f.left()->toolTip().contains(QStringLiteral(">Acme<")));
    }

    void aClickOpensTheLinkOfTheVisibleCreative() {
        ViewFixture f;
        f.show(kBoth);
        QByteArray other = kBoth;
        f.fetch(other.replace("https://l.test/\"", "https://new.test/\""));
        f.runtime.apply(*f.store, 184, 32);
        // The new creative has arrived, but the old one is still on screen.
        QTest::mouseClick(f.left(), Qt::LeftButton);
        QCOMPARE(f.host.workspace.opened, std::vector<QString>{QStringLiteral("https://l.test/")});
    }

    void screenReadersFindALinkAndAText() {
        ViewFixture f;
        f.show(kBoth);
        QAccessibleInterface* const row = QAccessible::queryAccessibleInterface(&f.view);
        QCOMPARE(row->childCount(), 2);
        QAccessibleInterface* const link = row->child(0);
        QCOMPARE(link->role(), QAccessible::Link);
        QCOMPARE(link->text(QAccessible::Name),
                 QStringLiteral("Left, A tagline much too wide for it"));
        QCOMPARE(row->indexOfChild(link), 0);
        QCOMPARE(link->actionInterface()->actionNames(),
                 QStringList{QAccessibleActionInterface::pressAction()});
        link->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(f.host.workspace.opened, std::vector<QString>{QStringLiteral("https://l.test/")});

        QAccessibleInterface* const text = row->child(1);
        QCOMPARE(text->role(), QAccessible::StaticText);
        QCOMPARE(text->text(QAccessible::Name), QStringLiteral("Right"));
        QCOMPARE(text->actionInterface()->actionNames(), QStringList());
        text->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QCOMPARE(f.host.workspace.opened.size(), std::size_t{1});
        QVERIFY(!row->child(2));
    }

    void screenReadersFindNoHiddenPills() {
        ViewFixture f;
        f.show(reply({kRight}));
        QAccessibleInterface* const row = QAccessible::queryAccessibleInterface(&f.view);
        QCOMPARE(row->childCount(), 1);
        QCOMPARE(row->child(0)->text(QAccessible::Name), QStringLiteral("Right"));
        f.store->pause24h();
        f.render();
        QCOMPARE(row->childCount(), 0);
    }
};

BRIMLET_TEST(TestView, QApplication)
#include "tst_view.moc"
