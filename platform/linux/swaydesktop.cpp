#include "platform/linux/swaydesktop.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brimlet {
namespace {

// sway-ipc(7): each message is the magic text, the payload's length, its type, and the payload.
constexpr QByteArrayView kMagic("i3-ipc");
constexpr std::uint32_t kRunCommand = 0;
constexpr std::uint32_t kGetWorkspaces = 1;
constexpr qsizetype kHead = kMagic.size() + 2 * qsizetype(sizeof(std::uint32_t));
constexpr std::uint32_t kLongestReply = 1 << 20;

/// A number of the head, in the machine's byte order.
std::uint32_t numberAt(const QByteArray& message, qsizetype offset) {
    std::uint32_t number = 0;
    std::memcpy(&number, message.constData() + offset, sizeof number);
    return number;
}

QByteArray bytesOf(std::uint32_t number) {
    QByteArray bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

/// Those of the workspaces on the screen: a workspace covers what bars leave of its output.
std::vector<QRect> visibleAreas(const QByteArray& workspaces) {
    std::vector<QRect> areas;
    const QJsonArray all = QJsonDocument::fromJson(workspaces).array();
    for (const auto& each : all) {
        const QJsonObject rect = each[u"rect"].toObject();
        const QRect area(rect[u"x"].toInt(), rect[u"y"].toInt(), rect[u"width"].toInt(),
                         rect[u"height"].toInt());
        if (each[u"visible"].toBool() && !area.isEmpty()) {
            areas.push_back(area);
        }
    }
    return areas;
}

} // namespace

SwayDesktop::SwayDesktop(QString path)
    : m_path(std::move(path)) {
    constexpr std::chrono::milliseconds kUntilPainted{20};
    m_retry.setInterval(kUntilPainted);
    m_retry.setSingleShot(true);
    connect(&m_retry, &QTimer::timeout, this, &SwayDesktop::placeAgain);
}

SwayDesktop::~SwayDesktop() {
    disconnectFromSway();
}

void SwayDesktop::requestAreas() {
    send(kGetWorkspaces, {});
}

void SwayDesktop::place(const QString& title, QPoint position) {
    constexpr int kMostMoves = 20;
    m_movesLeft = kMostMoves;
    m_move = QStringLiteral("[pid=%1 title=\"^%2$\"] move absolute position %3 px %4 px")
                 .arg(QCoreApplication::applicationPid())
                 .arg(title)
                 .arg(position.x())
                 .arg(position.y())
                 .toUtf8();
    placeAgain();
}

void SwayDesktop::placeAgain() {
    if (m_movesLeft > 0) {
        --m_movesLeft;
        send(kRunCommand, m_move);
    }
}

void SwayDesktop::stop() {
    m_movesLeft = 0;
    m_retry.stop();
}

void SwayDesktop::send(std::uint32_t type, const QByteArray& payload) {
    const QByteArray message = kMagic.toByteArray() +
                               bytesOf(static_cast<std::uint32_t>(payload.size())) + bytesOf(type) +
                               payload;
    // The socket takes so short a message whole, or sway is stuck.
    if (connectToSway() &&
        ::send(m_socket, message.constData(), static_cast<std::size_t>(message.size()),
               MSG_NOSIGNAL) != message.size()) {
        disconnectFromSway();
    }
}

bool SwayDesktop::connectToSway() {
    if (m_socket >= 0) {
        return true;
    }
    const QByteArray path = QFile::encodeName(m_path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.isEmpty() || path.size() >= qsizetype(sizeof address.sun_path)) {
        return false;
    }
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const auto* const target =
        reinterpret_cast<const sockaddr*>(&address); // NOLINT(*-reinterpret-cast): POSIX's way
    if (m_socket < 0 || ::connect(m_socket, target, sizeof address) != 0) {
        disconnectFromSway();
        return false;
    }
    m_readable = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    connect(m_readable.get(), &QSocketNotifier::activated, this, &SwayDesktop::readReplies);
    return true;
}

void SwayDesktop::readReplies() {
    std::array<char, 4096> part{};
    const auto length = ::recv(m_socket, part.data(), part.size(), 0);
    if (length <= 0) {
        if (length == 0 || errno != EAGAIN) {
            disconnectFromSway();
        }
        return;
    }
    m_received.append(part.data(), length);
    while (m_received.size() >= kHead) {
        const std::uint32_t payload = numberAt(m_received, kMagic.size());
        if (!m_received.startsWith(kMagic) || payload > kLongestReply) {
            disconnectFromSway();
            return;
        }
        if (m_received.size() < kHead + qsizetype(payload)) {
            return;
        }
        const std::uint32_t type =
            numberAt(m_received, kMagic.size() + qsizetype(sizeof(std::uint32_t)));
        handleReply(type, m_received.mid(kHead, payload));
        m_received.remove(0, kHead + qsizetype(payload));
    }
}

void SwayDesktop::handleReply(std::uint32_t type, const QByteArray& payload) {
    if (type == kRunCommand && !QJsonDocument::fromJson(payload)[0][u"success"].toBool()) {
        m_retry.start();
    }
    if (type != kGetWorkspaces) {
        return;
    }
    auto areas = visibleAreas(payload);
    if (areas != m_areas) {
        m_areas = std::move(areas);
        Q_EMIT areasChanged();
    }
}

void SwayDesktop::disconnectFromSway() {
    if (m_readable) {
        m_readable->setEnabled(false);
        m_readable.release()->deleteLater(); // this may run inside its signal
    }
    if (m_socket >= 0) {
        ::close(m_socket);
    }
    m_socket = -1;
    m_received.clear();
}

} // namespace brimlet
