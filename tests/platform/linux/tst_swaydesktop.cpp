#include "platform/linux/swaydesktop.h"
#include "tests/support/emulated.h"
#include "tests/support/testprogram.h"

#include <QCoreApplication>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace brimlet;

namespace {

const int kPatience = 5'000 * slowness();
constexpr std::uint32_t kCommand = 0;
constexpr std::uint32_t kWorkspaces = 1;

/// Sway's end of the socket, for one client at a time.
class StandInSway final {
public:
    StandInSway() {
        m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        const QByteArray name = QFile::encodeName(path());
        std::memcpy(address.sun_path, name.constData(), static_cast<std::size_t>(name.size()));
        m_isListening =
            ::bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
            ::listen(m_listener, 4) == 0;
    }
    ~StandInSway() {
        hangUp();
        ::close(m_listener);
    }
    StandInSway(const StandInSway&) = delete;
    StandInSway& operator=(const StandInSway&) = delete;

    [[nodiscard]] bool isListening() const { return m_isListening; }
    [[nodiscard]] QString path() const { return m_folder.filePath(QStringLiteral("sway.sock")); }

    /// The next message that was sent, without its magic text and length; null when there is none.
    QByteArray message() {
        if (m_client < 0 && isReadable(m_listener)) {
            m_client = ::accept(m_listener, nullptr, nullptr);
        }
        if (m_client < 0 || !isReadable(m_client)) {
            return {};
        }
        const QByteArray head = receive(14);
        if (!head.startsWith("i3-ipc")) {
            return head;
        }
        std::uint32_t length = 0;
        std::memcpy(&length, head.constData() + 6, sizeof length);
        return QByteArray::number(head.at(10)) + ' ' + receive(length);
    }
    [[nodiscard]] bool hasMessage() const { return isReadable(m_client, 0); }
    void send(const QByteArray& bytes) const {
        QCOMPARE(::send(m_client, bytes.constData(), static_cast<std::size_t>(bytes.size()), 0),
                 bytes.size());
    }
    /// Whether the client has ended the connection.
    [[nodiscard]] bool isLeft() const {
        char next = 0;
        return ::recv(m_client, &next, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
    }
    void hangUp() {
        if (m_client >= 0) {
            ::close(m_client);
            m_client = -1;
        }
    }

private:
    static bool isReadable(int socket, int patience = kPatience) {
        pollfd descriptor{socket, POLLIN, 0};
        return ::poll(&descriptor, 1, patience) > 0;
    }
    [[nodiscard]] QByteArray receive(std::size_t length) const {
        QByteArray bytes(static_cast<qsizetype>(length), '\0');
        const auto received = length == 0 ? 0 : ::recv(m_client, bytes.data(), length, MSG_WAITALL);
        return bytes.left(std::max<qsizetype>(received, 0));
    }

    QTemporaryDir m_folder;
    int m_listener = -1;
    int m_client = -1;
    bool m_isListening = false;
};

QByteArray reply(std::uint32_t type, const QByteArray& payload) {
    const auto length = static_cast<std::uint32_t>(payload.size());
    return QByteArray("i3-ipc") +
           QByteArray(reinterpret_cast<const char*>(&length), sizeof length) +
           QByteArray(reinterpret_cast<const char*>(&type), sizeof type) + payload;
}

const QByteArray kTwoOutputs = R"([
    {"visible": true, "rect": {"x": 0, "y": 28, "width": 1512, "height": 954}},
    {"visible": false, "rect": {"x": 0, "y": 28, "width": 1512, "height": 900}},
    {"visible": true, "rect": {"x": 1512, "y": 0, "width": 1920, "height": 1052}}])";
const std::vector<QRect> kTwoAreas{{0, 28, 1512, 954}, {1512, 0, 1920, 1052}};

} // namespace

class TestSwayDesktop final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itAsksForTheAreasOfTheWorkspacesOnTheScreen() {
        StandInSway sway;
        QVERIFY(sway.isListening());
        SwayDesktop desktop(sway.path());
        const QSignalSpy changes(&desktop, &SwayDesktop::areasChanged);
        QVERIFY(desktop.areas().empty());
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 "));
        sway.send(reply(kWorkspaces, kTwoOutputs));
        QTRY_COMPARE_WITH_TIMEOUT(desktop.areas(), kTwoAreas, kPatience);
        QCOMPARE(changes.size(), 1);
        // The same again is no change; a bar that went is one.
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 "));
        sway.send(
            reply(kWorkspaces, kTwoOutputs) +
            reply(kWorkspaces, R"([{"visible": true, "rect": {"width": 1512, "height": 982}}])"));
        const std::vector<QRect> whole{{0, 0, 1512, 982}};
        QTRY_COMPARE_WITH_TIMEOUT(desktop.areas(), whole, kPatience);
        QCOMPARE(changes.size(), 2);
    }

    void itMovesTheWindowOfThisProcess() {
        StandInSway sway;
        SwayDesktop desktop(sway.path());
        desktop.place(QStringLiteral("Brimlet panel"), QPoint(-320, 388));
        QCOMPARE(sway.message(),
                 QStringLiteral("0 [pid=%1 title=\"^Brimlet panel$\"] move absolute position "
                                "-320 px 388 px")
                     .arg(QCoreApplication::applicationPid())
                     .toUtf8());
        sway.send(reply(kCommand, R"([{"success": true}])") + reply(kWorkspaces, kTwoOutputs));
        QTRY_COMPARE_WITH_TIMEOUT(desktop.areas(), kTwoAreas, kPatience);
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 ")); // and no other move before
    }

    void aRefusedMoveIsTriedAgainTwentyTimesInAll() {
        StandInSway sway;
        SwayDesktop desktop(sway.path());
        desktop.place(QStringLiteral("Brimlet panel"), QPoint(1, 2));
        const QByteArray first = sway.message();
        for (int time = 1; time < 20; ++time) {
            sway.send(reply(kCommand, R"([{"success": false, "error": "No matching node."}])"));
            QTRY_VERIFY_WITH_TIMEOUT(sway.hasMessage(), kPatience); // our loop runs meanwhile
            QCOMPARE(sway.message(), first);
        }
        desktop.placeAgain();
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 "));
        desktop.place(QStringLiteral("Brimlet panel"), QPoint(3, 4)); // counts anew
        QVERIFY(sway.message().endsWith("3 px 4 px"));
        desktop.placeAgain();
        QVERIFY(sway.message().endsWith("3 px 4 px"));
        desktop.stop();
        desktop.placeAgain();
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 "));
    }

    void repliesMayComeInPieces() {
        StandInSway sway;
        SwayDesktop desktop(sway.path());
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 "));
        const QByteArray replies =
            reply(kCommand, R"([{"success": true}])") + reply(kWorkspaces, kTwoOutputs);
        for (const char byte : replies) {
            QVERIFY(desktop.areas().empty());
            sway.send(QByteArray(1, byte));
            QCoreApplication::processEvents();
        }
        QTRY_COMPARE_WITH_TIMEOUT(desktop.areas(), kTwoAreas, kPatience);
    }

    void aBrokenReplyChangesNothingAndTheNextRequestConnectsAgain_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("other magic text") << QByteArray("i4-ipc") + QByteArray(8, '\0');
        QTest::newRow("too long") << QByteArray("i3-ipc") + QByteArray(8, '\xff');
        QTest::newRow("hung up") << QByteArray();
    }
    void aBrokenReplyChangesNothingAndTheNextRequestConnectsAgain() {
        QFETCH(const QByteArray, bytes);
        StandInSway sway;
        SwayDesktop desktop(sway.path());
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 "));
        if (bytes.isEmpty()) {
            sway.hangUp();
            QCoreApplication::processEvents();
        } else {
            sway.send(bytes);
            QTRY_VERIFY_WITH_TIMEOUT(sway.isLeft(), kPatience);
            sway.hangUp();
        }
        QVERIFY(desktop.areas().empty());
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 "));
        sway.send(reply(kWorkspaces, kTwoOutputs));
        QTRY_COMPARE_WITH_TIMEOUT(desktop.areas(), kTwoAreas, kPatience);
    }

    void whatIsNoListOfWorkspacesIsNoArea_data() {
        QTest::addColumn<QByteArray>("payload");
        QTest::newRow("no JSON") << QByteArray("{");
        QTest::newRow("an object") << QByteArray(R"({"visible": true})");
        QTest::newRow("numbers") << QByteArray("[1, 2]");
        QTest::newRow("without a rectangle") << QByteArray(R"([{"visible": true}])");
        QTest::newRow("an empty one")
            << QByteArray(R"([{"visible": true, "rect": {"width": 0, "height": 5}}])");
    }
    void whatIsNoListOfWorkspacesIsNoArea() {
        QFETCH(const QByteArray, payload);
        StandInSway sway;
        SwayDesktop desktop(sway.path());
        desktop.requestAreas();
        QCOMPARE(sway.message(), QByteArray("1 "));
        sway.send(reply(kWorkspaces, kTwoOutputs));
        QTRY_COMPARE_WITH_TIMEOUT(desktop.areas(), kTwoAreas, kPatience);
        sway.send(reply(kWorkspaces, payload));
        QTRY_VERIFY_WITH_TIMEOUT(desktop.areas().empty(), kPatience);
    }

    void withoutSwayNothingHappens() {
        for (const QString& path :
             {QString(), QStringLiteral("/nowhere/sway.sock"), QString(200, QLatin1Char('x'))}) {
            SwayDesktop desktop(path);
            desktop.requestAreas();
            desktop.place(QStringLiteral("Brimlet panel"), {});
            QVERIFY(desktop.areas().empty());
        }
    }
};

BRIMLET_TEST(TestSwayDesktop, QCoreApplication)
#include "tst_swaydesktop.moc"
