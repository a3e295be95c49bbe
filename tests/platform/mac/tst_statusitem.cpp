#include "platform/mac/rules/macstatusitem.h"
#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"
#include "tests/support/pointer.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>

#include <unistd.h>

using namespace brimlet;

namespace {

constexpr int kPatience = 15'000;

} // namespace

/// The status item of macOS in a tray of Linux: all of it is Qt's, so this shows what it makes of
/// Qt's signals, and nothing of a menu bar.
class TestMacStatusItem final : public QObject {
    Q_OBJECT

    XServer m_x;
    QElapsedTimer m_sinceClick;

    /// The icon's frame; null while the tray does not show it.
    [[nodiscard]] QRect iconPlace() const {
        for (const ClientWindow& window : m_x.windowsOf(getpid())) {
            if (window.isViewable) {
                return window.geometry;
            }
        }
        return {};
    }
    [[nodiscard]] static QRect placeOf(const std::optional<Rect>& place) {
        return place ? toQt(*place, primaryGeometry()).toRect() : QRect();
    }
    void clickIcon(const char* button, int times) {
        const QPoint at = iconPlace().center();
        xdotool({QStringLiteral("mousemove"), QString::number(at.x()), QString::number(at.y()),
                 QStringLiteral("click"), QStringLiteral("--repeat"), QString::number(times),
                 QStringLiteral("--delay"), QStringLiteral("40"), QString::fromLatin1(button)});
        m_sinceClick.start();
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }

    void eachClickIsOnePressAtTheItem_data() {
        QTest::addColumn<QByteArray>("button");
        QTest::addColumn<int>("times");
        QTest::newRow("left") << QByteArray("1") << 1;
        QTest::newRow("right") << QByteArray("3") << 1;
        QTest::newRow("double") << QByteArray("1") << 2;
    }
    void eachClickIsOnePressAtTheItem() {
        QFETCH(QByteArray, button);
        QFETCH(int, times);
        MacStatusItem item;
        QList<std::optional<Rect>> presses;
        item.observePresses([&presses](const std::optional<Rect>& at) { presses << at; });
        QVERIFY(item.isShown());
        QTRY_VERIFY_WITH_TIMEOUT(iconPlace().isValid() && placeOf(item.place()) == iconPlace(),
                                 kPatience);
        // A tray that arranges its icons may lose clicks.
        for (int tries = 0; tries < 10 && presses.isEmpty(); ++tries) {
            clickIcon(button.constData(), times);
            (void)QTest::qWaitFor([&presses] { return !presses.isEmpty(); }, 1000);
        }
        // A second press would come with the second click.
        QTRY_VERIFY_WITH_TIMEOUT(m_sinceClick.hasExpired(QApplication::doubleClickInterval()),
                                 kPatience);
        QCOMPARE(presses.size(), 1);
        QCOMPARE(placeOf(presses.constFirst()), iconPlace());
    }
};

BRIMLET_TEST(TestMacStatusItem, QApplication)
#include "tst_statusitem.moc"
