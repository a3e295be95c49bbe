#include "platform/mac/rules/menubackground.h"
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
    void escapeAndItsLikeCancelAlsoFromAField() {
        auto content = std::make_unique<QWidget>();
        auto* const field = new QLineEdit(content.get());
        int cancelled = 0;
        MenuBackground ground(
            std::move(content), [&] { ++cancelled; }, [] {}, [] {});
        QTest::keyClick(field, Qt::Key_Escape);
        QCOMPARE(cancelled, 1);
        QTest::keyClick(field, Qt::Key_A);
        QCOMPARE(cancelled, 1);
        QCOMPARE(field->text(), QStringLiteral("a"));
    }

    void itIsAsLargeAsTheContentWants() {
        auto content = std::make_unique<Content>();
        auto* const inside = content.get();
        int changed = 0;
        MenuBackground ground(
            std::move(content), [] {}, [&] { ++changed; }, [] {});
        QCOMPARE(ground.sizeHint(), QSize(320, 400));
        inside->grow();
        QTRY_COMPARE(changed, 1);
        QCOMPARE(ground.sizeHint(), QSize(320, 500));
    }

    void itsPlaceIsBesideTheItemAndInsideTheScreen() {
        const QRect screen = QApplication::primaryScreen()->geometry();
        QCOMPARE(screen.topLeft(), QPoint(0, 0));
        const double top = screen.height();
        MenuBackground ground(
            std::make_unique<Content>(), [] {}, [] {}, [] {});
        ground.appear(Rect{400, top - 24, 24, 24});
        QVERIFY(ground.isVisible());
        QCOMPARE(ground.fit(), std::optional(Rect{252, top - 430, 320, 400}));
        QCOMPARE(ground.size(), QSize(320, 400));
        ground.appear(std::nullopt);
        QCOMPARE(ground.fit(), std::optional(Rect{screen.width() - 326.0, top - 406, 320, 400}));
    }

    void appearingItHasTheKeyboardAboveTheFirstControl() {
        auto content = std::make_unique<QWidget>();
        content->setFocusPolicy(Qt::StrongFocus);
        auto* const inside = content.get();
        const auto* const field = new QLineEdit(inside);
        MenuBackground ground(
            std::move(content), [] {}, [] {}, [] {});
        ground.appear(std::nullopt);
        QCOMPARE(ground.focusWidget(), inside);
        QVERIFY(!field->hasFocus());
    }

    void theContentFillsItAlsoWhereThereIsLessRoom() {
        auto content = std::make_unique<Content>();
        const auto* const inside = content.get();
        MenuBackground ground(
            std::move(content), [] {}, [] {}, [] {});
        ground.resize(320, 250);
        ground.show();
        QCOMPARE(inside->geometry(), QRect(0, 0, 320, 250));
    }

    void aShapeIsToldOfOnceItHasBeenPainted() {
        int reshaped = 0;
        MenuBackground ground(
            std::make_unique<QWidget>(), [] {}, [] {}, [&] { ++reshaped; });
        ground.resize(320, 400);
        QCoreApplication::processEvents();
        QCOMPARE(reshaped, 0);
        ground.show();
        QTRY_COMPARE(reshaped, 1);
        ground.repaint();
        QCoreApplication::processEvents();
        QCOMPARE(reshaped, 1);
        ground.resize(320, 500);
        QTRY_COMPARE(reshaped, 2);
    }

    void itsCornersAreRoundAndItsGroundIsTheContents() {
        auto content = std::make_unique<QWidget>();
        QPalette palette;
        palette.setColor(QPalette::Window, Qt::blue);
        content->setPalette(palette);
        MenuBackground ground(
            std::move(content), [] {}, [] {}, [] {});
        ground.resize(100, 100);
        QImage picture(ground.size(), QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
        ground.render(&picture, {}, {}, QWidget::DrawWindowBackground);
        QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);
        QCOMPARE(picture.pixelColor(50, 50), QColor(Qt::blue));
        QCOMPARE(picture.pixelColor(50, 0), QColor(Qt::blue));
    }
};

BRIMLET_TEST(TestMenuBackground, QApplication)
#include "tst_menubackground.moc"
