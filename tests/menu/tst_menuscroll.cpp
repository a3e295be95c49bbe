#include "menu/menuscroll.h"
#include "menu/slimscrollbar.h"
#include "tests/menu/shownmenu.h"
#include "tests/support/testprogram.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPalette>
#include <QVBoxLayout>
#include <QWheelEvent>

using namespace brimlet;

namespace {

/// The menu in a window that is too low for it.
struct LowWindow final {
    LowWindow() {
        menu.reply(ShownMenu::with(ShownMenu::with(ShownMenu::liveWeek(), "agreed", false),
                                   "agreementText", QStringLiteral("Many words. ").repeated(100)));
        menu.poll();
        scroll = std::make_unique<MenuScroll>(&menu.view());
        scroll->resize(320, 220);
        scroll->show();
    }

    [[nodiscard]] bool isVisible(const QWidget& widget) const {
        const QRect place(widget.mapTo(scroll->viewport(), QPoint()), widget.size());
        return place.top() >= 0 && place.bottom() < scroll->viewport()->height();
    }

    ShownMenu menu;
    std::unique_ptr<MenuScroll> scroll; ///< Owns the menu; destroyed first.
};

void turnWheel(QWidget& widget, QPoint angle) {
    const QPointF middle = widget.rect().center();
    QWheelEvent event(middle, widget.mapToGlobal(middle), {}, angle, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

/// A bar 90 points high for a content twice as high.
struct BarAlone final {
    BarAlone() {
        bar.setRange(0, 90);
        bar.setPageStep(90);
        bar.resize(8, 90);
        bar.show();
    }

    /// The colour at this height, painted on black.
    [[nodiscard]] QColor at(int y) {
        QImage picture(bar.size(), QImage::Format_RGB32);
        picture.fill(Qt::black);
        bar.render(&picture, {}, {}, QWidget::DrawChildren);
        return picture.pixelColor(4, y);
    }
    void drag(int from, int to) {
        QTest::mousePress(&bar, Qt::LeftButton, {}, QPoint(4, from));
        const QPoint end(4, to);
        QMouseEvent move(QEvent::MouseMove, end, bar.mapToGlobal(QPointF(end)), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(&bar, &move);
        QTest::mouseRelease(&bar, Qt::LeftButton, {}, end);
    }

    SlimScrollBar bar;
};

} // namespace

/// The menu in a window with less height than it needs, and its scroll bar.
class TestMenuScroll final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyControlReachedByTabIsVisible() {
        LowWindow low;
        QVERIFY(QTest::qWaitForWindowActive(low.scroll.get()));
        QStringList visited;
        for (int i = 0; i < 6; ++i) {
            QWidget* const before = QApplication::focusWidget();
            QTest::keyClick(before != nullptr ? before : low.scroll.get(), Qt::Key_Tab);
            QWidget* const focused = QApplication::focusWidget();
            QVERIFY(focused != nullptr);
            visited << focused->accessibleName();
            QVERIFY2(low.isVisible(*focused), qPrintable(focused->accessibleName()));
        }
        visited.sort();
        QCOMPARE(visited,
                 (QStringList{QStringLiteral("Host agreement"), QStringLiteral("Host token"),
                              QStringLiteral("I agree · not a guarantee"),
                              QStringLiteral("Pause ads 24h"), QStringLiteral("Quit"),
                              QStringLiteral("Save token")}));
    }

    void aControlFocusedByOtherMeansIsVisible() {
        LowWindow low;
        QVERIFY(QTest::qWaitForWindowActive(low.scroll.get()));
        auto* const quit = low.menu.named<QAbstractButton>(QStringLiteral("Quit"));
        QVERIFY(!low.isVisible(*quit));
        quit->setFocus(Qt::OtherFocusReason);
        QVERIFY(low.isVisible(*quit));
        auto* const agreement = low.menu.named<QWidget>(QStringLiteral("Host agreement"));
        QVERIFY(!low.isVisible(*agreement));
        agreement->setFocus(Qt::OtherFocusReason);
        QVERIFY(low.isVisible(*agreement));
    }

    void itsBarStaysOutOfTheRoundCorners() {
        LowWindow low;
        QScrollBar& bar = *low.scroll->verticalScrollBar();
        QVERIFY(bar.isVisible());
        const auto isInked = [&](int y) {
            QImage picture(bar.size(), QImage::Format_RGB32);
            picture.fill(Qt::black);
            bar.render(&picture, {}, {}, QWidget::DrawChildren);
            return qGray(picture.pixel(bar.width() / 2, y)) > 20;
        };
        QVERIFY(!isInked(19));
        QVERIFY(isInked(23));
        bar.setValue(bar.maximum());
        QVERIFY(isInked(bar.height() - 24));
        QVERIFY(!isInked(bar.height() - 20));
    }

    void aWheelScrollsVerticallyAndNeverHorizontally() {
        LowWindow low;
        turnWheel(*low.scroll->viewport(), {-120, 0});
        turnWheel(*low.scroll->viewport(), {-120, -120});
        QCOMPARE(low.menu.view().x(), 0);
        turnWheel(*low.scroll->viewport(), {0, -120});
        QVERIFY(low.menu.view().y() < 0);
        QCOMPARE(low.menu.view().x(), 0);
        // Nor does the focus on a control scroll it horizontally.
        QVERIFY(QTest::qWaitForWindowActive(low.scroll.get()));
        low.menu.named<QWidget>(QStringLiteral("Save token"))->setFocus();
        QCOMPARE(low.menu.view().x(), 0);
    }

    void pageDownScrollsFromTheStart() {
        LowWindow low;
        QVERIFY(QTest::qWaitForWindowActive(low.scroll.get()));
        low.scroll->setFocus(); // like the menu's window
        QCOMPARE(QApplication::focusWidget(), low.scroll.get());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown);
        QVERIFY(low.scroll->verticalScrollBar()->value() > 100);
    }

    void itOpensAtTheTop() {
        LowWindow low;
        low.scroll->verticalScrollBar()->setValue(100);
        low.scroll->hide();
        low.scroll->show();
        QCOMPARE(low.scroll->verticalScrollBar()->value(), 0);
    }

    void itsSizeHintFollowsTheMenusSize() {
        ShownMenu menu;
        menu.poll();
        QWidget window;
        auto* const holder = new QWidget(&window);
        auto* const layout = new QVBoxLayout(holder);
        layout->setContentsMargins({});
        layout->setSizeConstraint(QLayout::SetFixedSize);
        layout->addWidget(new MenuScroll(&menu.view()));
        window.show();
        QCOMPARE(holder->size(), menu.view().size());
        QCOMPARE(holder->width(), 320);
        const int before = holder->height();
        menu.reply(ShownMenu::with(ShownMenu::liveWeek(), "creatives", QJsonArray()));
        menu.poll();
        QCoreApplication::sendPostedEvents();
        QVERIFY(menu.view().height() < before);
        QTRY_COMPARE(holder->size(), menu.view().size());
    }

    void itsBackgroundIsTheMenus() {
        LowWindow low;
        QCOMPARE(low.scroll->palette().color(QPalette::Window).rgb(), qRgb(18, 18, 18));
        const QImage picture = low.scroll->grab().toImage();
        QCOMPARE(picture.pixelColor(2, 2).rgb(), qRgb(18, 18, 18));
    }

    void theHandleMovesFromEndToEnd() {
        BarAlone alone;
        QVERIFY(alone.at(1).red() > 80);
        QVERIFY(alone.at(43).red() > 80);
        QCOMPARE(alone.at(47).red(), 0);
        QCOMPARE(alone.at(88).red(), 0);
        alone.bar.setValue(90);
        QCOMPARE(alone.at(1).red(), 0);
        QCOMPARE(alone.at(42).red(), 0);
        QVERIFY(alone.at(88).red() > 80);
    }

    void theHandleOfAVeryLongTextIs24PointsLong() {
        BarAlone alone;
        alone.bar.setRange(0, 10'000'000);
        QVERIFY(alone.at(1).red() > 80);
        QVERIFY(alone.at(22).red() > 80);
        QCOMPARE(alone.at(25).red(), 0);
        alone.bar.setValue(10'000'000);
        QVERIFY(alone.at(88).red() > 80);
    }

    void theHandleCanBeDragged() {
        BarAlone alone;
        alone.drag(10, 32); // 22 of the 45 points that it can move
        QVERIFY2(qAbs(alone.bar.value() - 44) <= 2, qPrintable(QString::number(alone.bar.value())));
        alone.drag(40, 89);
        QCOMPARE(alone.bar.value(), 90);
    }

    void aClickBesideTheHandlePages() {
        BarAlone alone;
        alone.bar.setRange(0, 360); // the handle has its minimum length
        QTest::mouseClick(&alone.bar, Qt::LeftButton, {}, QPoint(4, 88));
        QCOMPARE(alone.bar.value(), 90);
        QTest::mouseClick(&alone.bar, Qt::LeftButton, {}, QPoint(4, 88));
        QCOMPARE(alone.bar.value(), 180);
        QTest::mouseClick(&alone.bar, Qt::LeftButton, {}, QPoint(4, 1));
        QCOMPARE(alone.bar.value(), 90);
    }

    void theBarShowsTheKeyboardFocus() {
        BarAlone alone;
        QCOMPARE(alone.bar.width(), 8);
        QVERIFY(qAbs(alone.at(20).red() - 107) <= 2); // white at 0.42
        QCOMPARE(alone.at(20).red(), alone.at(20).blue());
        alone.bar.setHighlighted(true);
        QCOMPARE(alone.at(20).rgb(), qRgb(61, 107, 255));
        alone.bar.setHighlighted(false);
        QCOMPARE(alone.at(20).red(), alone.at(20).blue());
    }
};

BRIMLET_TEST(TestMenuScroll, QApplication)
#include "tst_menuscroll.moc"
