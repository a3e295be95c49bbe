#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/wayland/seat.h"
#include "tests/support/xserver.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
constexpr QPoint kLeftCapsule(542 + 8 + 54, 13);
const QString kClient = QStringLiteral("libwayland-client.so.0");
const QString kCursor = QStringLiteral("libwayland-cursor.so.0");

} // namespace

/// The program on a Wayland desktop where Wayland's libraries are not as it needs them.
class TestWithoutWayland final : public QObject {
    Q_OBJECT

    XServer m_x;
    QTemporaryDir m_folder;
    QString m_openedFile = m_folder.filePath(QStringLiteral("opened"));

    [[nodiscard]] QByteArray opened() const {
        QFile file(m_openedFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] bool hasX11Window() const {
        const auto window = m_x.windowNamed("Brimlet");
        return window && m_x.isMapped(*window);
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session");
        QCOMPARE(QProcess::execute(sourcePath(u"tests/support/session/recording-browser"),
                                   {m_openedFile}),
                 0);
    }

    void theCapsulesAreShownAndClickable_data() {
        QTest::addColumn<QString>("library"); // which is found in place of the system's
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("isOnX11");
        const QString broken = m_folder.filePath(QStringLiteral("broken"));
        QFile file(broken);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("no library") > 0);
        const QString old = programPath(u"libbrimlet-old-wayland.so");
        QTest::newRow("all libraries") << QString() << QString() << false;
        QTest::newRow("no libwayland-client") << kClient << broken << true;
        QTest::newRow("libwayland-client before 1.20") << kClient << old << true;
        QTest::newRow("no libwayland-cursor") << kCursor << broken << false;
    }
    void theCapsulesAreShownAndClickable() {
        QFETCH(const QString, library);
        QFETCH(const QString, file);
        QFETCH(const bool, isOnX11);
        QFile::remove(m_openedFile);
        const QTemporaryDir libraries;
        QVERIFY(library.isEmpty() || QFile::copy(file, libraries.filePath(library)));
        desktop::Seat seat;
        seat.moveTo(QPoint(756, 600));
        const PlacementProcess service;
        SimulatorProcess program({{QStringLiteral("infoDictionary"),
                                   QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}},
                                 {{QStringLiteral("LD_LIBRARY_PATH"), libraries.path()}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QTRY_COMPARE_WITH_TIMEOUT(hasX11Window(), isOnX11, kPatience);
        // Again, since the first click may come before the capsule is on the screen.
        QTRY_VERIFY_WITH_TIMEOUT((seat.click(kLeftCapsule), !opened().isEmpty()), kPatience);
        QCOMPARE(hasX11Window(), isOnX11);
        QCOMPARE(program.endBySignal(SIGTERM), 0);
    }
};

BRIMLET_TEST(TestWithoutWayland, QApplication)
#include "tst_withoutwayland.moc"
