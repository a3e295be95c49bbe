#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QRasterWindow>
#include <QTest>

#include <optional>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
constexpr QPoint kInLeftCapsule(555, 13);
const QColor kOther(0, 255, 0);

/// A full-screen window of that colour.
class FullScreenWindow final : public QRasterWindow {
protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(QRect(QPoint(), size()), kOther);
    }
};

} // namespace

/// What covers the capsules, and what they cover, in a real desktop.
class TestStacking final : public QObject {
    Q_OBJECT

    XServer m_x;
    std::optional<PlacementProcess> m_service;
    std::optional<SimulatorProcess> m_program;

    [[nodiscard]] bool isCapsuleInFront() const {
        return m_x.pixel(kInLeftCapsule).lightness() < 40;
    }
    [[nodiscard]] bool isOtherInFront() const { return m_x.pixel(kInLeftCapsule) == kOther; }
    /// Whether it is in front now and after each of some more polls.
    [[nodiscard]] bool staysInFront() const {
        for (int i = 0; i < 20; ++i) {
            const qsizetype polls = m_service->requestLines().size();
            if (!QTest::qWaitFor([&] { return m_service->requestLines().size() > polls; },
                                 kPatience) ||
                !isOtherInFront()) {
                return false;
            }
        }
        return true;
    }
    /// Has the program hide the capsules and show them again.
    void showAgain() {
        m_program->edit({{QStringLiteral("screensAsleep"), true}});
        QTRY_VERIFY_WITH_TIMEOUT(!m_program->isPanelShown(), kPatience);
        m_program->edit({{QStringLiteral("screensAsleep"), false}});
        QTRY_VERIFY_WITH_TIMEOUT(m_program->isPanelShown(), kPatience);
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session"); }
    void init() {
        m_service.emplace();
        m_program.emplace(
            QJsonObject{{QStringLiteral("infoDictionary"),
                         QJsonObject{{QStringLiteral("BrimletAPIURL"), m_service->root()}}},
                        {QStringLiteral("speed"), 60}});
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
    }
    void cleanup() {
        m_program.reset();
        m_service.reset();
    }

    void aFullScreenWindowIsBehindThem() {
        FullScreenWindow film;
        film.showFullScreen();
        QVERIFY(QTest::qWaitForWindowActive(&film));
        // Beside the capsules.
        QTRY_COMPARE_WITH_TIMEOUT(m_x.pixel({545, 13}), kOther, kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
    }

    void anOpenMenuIsInFrontOfThem() {
        FullScreenWindow film;
        film.showFullScreen();
        QVERIFY(QTest::qWaitForWindowActive(&film));
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
        QMenu menu;
        menu.setStyleSheet(QStringLiteral("background: %1").arg(kOther.name()));
        for (int i = 0; i < 5; ++i) {
            menu.addAction(QStringLiteral("a long entry of a menu"));
        }
        menu.popup({540, 0});
        QTRY_VERIFY_WITH_TIMEOUT(isOtherInFront(), kPatience);
        QVERIFY(staysInFront());
        showAgain();
        QVERIFY(staysInFront());
        menu.close();
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
    }

    void aScreenLockerIsInFrontOfThem() {
        QProcess locker;
        const auto unlock = qScopeGuard([&] {
            locker.kill();
            locker.waitForFinished();
        });
        locker.start(QStringLiteral("i3lock"),
                     {QStringLiteral("--nofork"), QStringLiteral("--color"), kOther.name().mid(1)});
        QTRY_VERIFY_WITH_TIMEOUT(isOtherInFront(), kPatience);
        QVERIFY(staysInFront());
        showAgain();
        QVERIFY(staysInFront());
        locker.kill();
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
    }
};

BRIMLET_TEST(TestStacking, QApplication)
#include "tst_stacking.moc"
