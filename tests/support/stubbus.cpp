#include "tests/support/stubbus.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brimlet {
namespace {

sockaddr_un nameOf(const QString& path) {
    sockaddr_un name{};
    name.sun_family = AF_UNIX;
    const QByteArray bytes = QFile::encodeName(path);
    std::copy(bytes.begin(), bytes.end(), std::begin(name.sun_path));
    return name;
}

int newSocket() {
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

} // namespace

StubBus::StubBus(Kind kind)
    : m_kind(kind)
    , m_listener(newSocket()) {
    const sockaddr_un name = nameOf(m_folder.filePath(QStringLiteral("bus")));
    const auto* const address = reinterpret_cast<const sockaddr*>(&name);
    if (::bind(m_listener, address, sizeof(name)) != 0) {
        qFatal("no socket could be made");
    }
    constexpr int kQueue = 64;
    switch (kind) {
    case Kind::Nobody:
        break;
    case Kind::Full:
        // With a limit of 0 the kernel still queues one connection.
        ::listen(m_listener, 0);
        m_waiting = newSocket();
        ::connect(m_waiting, address, sizeof(name));
        break;
    default:
        ::listen(m_listener, kQueue);
        m_thread = std::thread(&StubBus::serve, this);
        break;
    }
}

StubBus::~StubBus() {
    m_isOver = true;
    if (m_thread.joinable()) {
        m_thread.join();
    }
    ::close(m_listener);
    if (m_waiting >= 0) {
        ::close(m_waiting);
    }
}

QString StubBus::address() const {
    return QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("bus"));
}

void StubBus::serve() const {
    std::vector<pollfd> sockets{{m_listener, POLLIN, 0}};
    while (!m_isOver) {
        constexpr int kInterval = 20; // milliseconds between checks for the end
        ::poll(sockets.data(), sockets.size(), kInterval);
        for (std::size_t i = 1; i < sockets.size(); ++i) {
            if (sockets[i].revents != 0 && !reply(sockets[i].fd)) {
                ::close(sockets[i].fd);
                sockets[i].fd = -1;
            }
        }
        sockets.erase(std::remove_if(sockets.begin(), sockets.end(),
                                     [](const pollfd& socket) { return socket.fd < 0; }),
                      sockets.end());
        if (const int one = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC); one >= 0) {
            sockets.push_back({one, POLLIN, 0});
        }
    }
    for (std::size_t i = 1; i < sockets.size(); ++i) {
        ::close(sockets[i].fd);
    }
}

bool StubBus::reply(int connection) const {
    std::array<char, 4096> buffer{};
    const auto size = ::read(connection, buffer.data(), buffer.size());
    if (size <= 0 || m_kind == Kind::ClosesAtOnce) {
        return false;
    }
    const QByteArray said(buffer.data(), size);
    const auto say = [connection](const char* line) {
        return ::send(connection, line, std::strlen(line), MSG_NOSIGNAL) > 0;
    };
    if (m_kind == Kind::Silent) {
        return true;
    }
    if (said.contains("BEGIN\r\n")) {
        return m_kind != Kind::ClosesLater;
    }
    if (said.contains("NEGOTIATE_UNIX_FD\r\n")) {
        return say("AGREE_UNIX_FD\r\n");
    }
    if (said.contains("AUTH EXTERNAL")) {
        return say("OK 0123456789abcdef0123456789abcdef\r\n");
    }
    return !said.contains("AUTH\r\n") || say("REJECTED EXTERNAL\r\n");
}

} // namespace brimlet
