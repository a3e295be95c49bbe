#include "platform/mac/rules/menubackground.h"
#include "tests/support/plaincorners.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QLineEdit>
#include <QScreen>
#include <QTest>

using namespace brimlet;

namespace {

class Content final : public QWidget {
public:
    [[nodiscard]] QSize sizeHint() const override { return m_size; }
    void grow() {
        m_size = {320, 500};
        updateGeometry();
        QCoreApplication::postEvent(parentWidget(), new QEvent(QEvent::LayoutRequest));
    }

private:
    QSize m_size{320, 400};
};

} // namespace

class TestMenuBackground final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void escapeCancelsAlsoFromATextField() {
        auto content = std::make_unique<QWidget>();
        auto* const field = new QLineEdit(content.get());
        int cancelled = 0;
        MenuBackground background(
            std::move(content), plainCorners, [&] { ++cancelled; }, [] {}, [] {});
        QTest::keyClick(field, Qt::Key_Escape);
        QCOMPARE(cancelled, 1);
        QTest::keyClick(field, Qt::Key_A);
        QCOMPARE(cancelled, 1);
        QCOMPARE(field->text(), QStringLiteral("a"));
    }

    void itsSizeHintFollowsTheContent() {
        auto content = std::make_unique<Content>();
        auto* const inside = content.get();
        int changed = 0;
        MenuBackground background(
            std::move(content), plainCorners, [] {}, [&] { ++changed; }, [] {});
        QCOMPARE(background.sizeHint(), QSize(320, 400));
        inside->grow();
        QTRY_COMPARE(changed, 1);
        QCOMPARE(background.sizeHint(), QSize(320, 500));
    }

    void itsPlaceIsBesideTheItemAndInsideTheScreen() {
        const QRect screen = QApplication::primaryScreen()->geometry();
        QCOMPARE(screen.topLeft(), QPoint(0, 0));
        const double top = screen.height();
        MenuBackground background(
            std::make_unique<Content>(), plainCorners, [] {}, [] {}, [] {});
        background.appear(Rect{400, top - 24, 24, 24});
        QVERIFY(background.isVisible());
        QCOMPARE(background.fit(), std::optional(Rect{252, top - 430, 320, 400}));
        QCOMPARE(background.size(), QSize(320, 400));
        background.appear(std::nullopt);
        QCOMPARE(background.fit(),
                 std::optional(Rect{screen.width() - 326.0, top - 406, 320, 400}));
        background.setItem(Rect{400, top - 24, 24, 24});
        QCOMPARE(background.fit(), std::optional(Rect{252, top - 430, 320, 400}));
    }

    void focusStartsBeforeTheFirstControl() {
        auto content = std::make_unique<QWidget>();
        content->setFocusPolicy(Qt::StrongFocus);
        auto* const inside = content.get();
        const auto* const field = new QLineEdit(inside);
        MenuBackground background(
            std::move(content), plainCorners, [] {}, [] {}, [] {});
        background.appear(std::nullopt);
        QCOMPARE(background.focusWidget(), inside);
        QVERIFY(!field->hasFocus());
    }

    void theContentFillsItEvenWhenSmallerThanItsHint() {
        auto content = std::make_unique<Content>();
        const auto* const inside = content.get();
        MenuBackground background(
            std::move(content), plainCorners, [] {}, [] {}, [] {});
        background.resize(320, 250);
        background.show();
        QCOMPARE(inside->geometry(), QRect(0, 0, 320, 250));
    }

    void aNewShapeIsReportedOnceItHasBeenPainted() {
        int reshaped = 0;
        MenuBackground background(
            std::make_unique<QWidget>(), plainCorners, [] {}, [] {}, [&] { ++reshaped; });
        background.resize(320, 400);
        QCoreApplication::processEvents();
        QCOMPARE(reshaped, 0);
        background.show();
        QTRY_COMPARE(reshaped, 1);
        background.repaint();
        QCoreApplication::processEvents();
        QCOMPARE(reshaped, 1);
        background.resize(320, 500);
        QTRY_COMPARE(reshaped, 2);
    }

    void itHasRoundCornersAndTheContentsColour() {
        auto content = std::make_unique<QWidget>();
        QPalette palette;
        palette.setColor(QPalette::Window, Qt::blue);
        palette.setColor(QPalette::Mid, Qt::green);
        content->setPalette(palette);
        MenuBackground background(
            std::move(content), plainCorners, [] {}, [] {}, [] {});
        background.resize(100, 100);
        QImage picture(background.size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        background.render(&picture, {}, {}, QWidget::DrawWindowBackground);
        QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(picture.pixelColor(50, 50), QColor(Qt::blue));
        QCOMPARE(picture.pixelColor(50, 0), QColor(Qt::green)); // the hairline
        QCOMPARE(picture.pixelColor(50, 1), QColor(Qt::blue));
    }
};

BRIMLET_TEST(TestMenuBackground, QApplication)
#include "tst_menubackground.moc"
