#include "tests/platform/wayland/waylandfixture.h"
#include "tests/support/testprogram.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace brimlet;
using namespace std::chrono_literals;

/// The connection: what it needs, its loss and its return.
class TestWaylandConnection final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsMissing_data() {
        QTest::addColumn<bool>("hasLayerShell");
        QTest::addColumn<bool>("hasShm");
        QTest::addColumn<QString>("missing");
        QTest::newRow("nothing") << true << true << QString();
        QTest::newRow("layer shell") << false << true << QStringLiteral("zwlr_layer_shell_v1");
        QTest::newRow("shared memory") << true << false << QStringLiteral("wl_shm");
    }
    void whatIsMissing() {
        QFETCH(const bool, hasLayerShell);
        QFETCH(const bool, hasShm);
        WaylandFixture f({.hasLayerShell = hasLayerShell, .hasShm = hasShm});
        QVERIFY(f.connection.isReady());
        QTEST(f.connection.missing(), "missing");
        QCOMPARE(f.connection.layerShellVersion().has_value(), hasLayerShell);
    }

    void withoutACompositorItIsNotReady_data() {
        QTest::addColumn<QByteArray>("display");
        QTest::newRow("unset") << QByteArray();
        QTest::newRow("no such socket") << QByteArray("nobody-here");
        QTest::newRow("no such folder") << QByteArray("/nowhere/wayland-0");
        QTest::newRow("too long") << QByteArray(200, 'x');
    }
    void withoutACompositorItIsNotReady() {
        QFETCH(const QByteArray, display);
        const QByteArray before = qgetenv("WAYLAND_DISPLAY");
        const auto restore = qScopeGuard([&] { qputenv("WAYLAND_DISPLAY", before); });
        qputenv("WAYLAND_DISPLAY", display);
        WaylandConnection connection;
        QVERIFY(!connection.connectWithin(10s));
        QVERIFY(!connection.isReady());
    }

    void aCompositorThatDoesNotAnswerIsWaitedForOnlySoLong() {
        const QTemporaryDir folder;
        const QByteArray path = folder.filePath(QStringLiteral("silent")).toUtf8();
        const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        const auto close = qScopeGuard([&] { ::close(listener); });
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::copy(path.begin(), path.end(), address.sun_path);
        QCOMPARE(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        QCOMPARE(::listen(listener, 0), 0);
        const QByteArray before = qgetenv("WAYLAND_DISPLAY");
        const auto restore = qScopeGuard([&] { qputenv("WAYLAND_DISPLAY", before); });
        qputenv("WAYLAND_DISPLAY", path);
        WaylandConnection connection;
        QVERIFY(!connection.connectWithin(20ms));
        // Its queue is full now, and connecting would wait for ever.
        WaylandConnection second;
        QVERIFY(!second.connectWithin(20ms));
        WaylandConnection third;
        QVERIFY(!third.connectWithin(20ms));
    }

    void aLostConnectionComesBackWhenItIsNextAskedFor() {
        WaylandFixture f;
        const QSignalSpy lost(&f.connection, &WaylandConnection::lost);
        QVERIFY(f.show());
        for (int i = 1; i <= 3; ++i) {
            f.compositor.disconnectClient();
            QTRY_COMPARE(lost.size(), i);
            QVERIFY(!f.connection.isReady());
            QVERIFY(!f.left->isVisible());
            // Meanwhile nothing is sent and nothing crashes.
            f.window->orderFrontRegardless();
            f.window->showTexts(textIn({40, 5, 60, 16}));
            f.window->updateContent(kLeft);
            f.window->setRegions(boxes({kLeft}), boxes({kLeft}));
            f.synchronise();
            QCOMPARE(f.compositor.log, QStringList());
            f.connection.reconnect();
            QTRY_VERIFY_WITH_TIMEOUT(f.compositor.isShown(), kPatience);
            QVERIFY(f.left->isVisible());
        }
    }

    void aPingIsAnswered() {
        WaylandFixture f({.layerShellVersion = 3}); // the popup makes the shell known that pings
        QVERIFY(f.show());
        f.compositor.ping();
        QVERIFY(f.sees(QStringLiteral("pong")));
    }

    void refusedMemoryLosesTheConnectionAndNothingElse() {
        WaylandFixture f({.refusesPools = true});
        const QSignalSpy lost(&f.connection, &WaylandConnection::lost);
        QCOMPARE(f.connection.missing(), QString());
        f.window->setFrame(kFrame);
        f.window->orderFrontRegardless();
        QTRY_COMPARE(lost.size(), 1);
        QVERIFY(!f.left->isVisible());
        // It is not tried again by itself.
        f.synchronise();
        QCOMPARE(f.compositor.log, QStringList());
        f.connection.reconnect();
        QTRY_COMPARE(lost.size(), 2);
    }
};

BRIMLET_TEST(TestWaylandConnection, QApplication)
#include "tst_waylandconnection.moc"
