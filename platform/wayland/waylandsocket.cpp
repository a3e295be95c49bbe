#include "platform/wayland/waylandsocket.h"

#include <QByteArray>

#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace brimlet {

int connectToCompositor() {
    const QByteArray name = qgetenv("WAYLAND_DISPLAY");
    const QByteArray path = name.startsWith('/') ? name : qgetenv("XDG_RUNTIME_DIR") + '/' + name;
    sockaddr_un address{};
    if (name.isEmpty() || path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) {
        return -1;
    }
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (socket >= 0 &&
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        ::close(socket);
        return -1;
    }
    return socket;
}

bool compositorAccepts() {
    const int socket = connectToCompositor();
    if (socket >= 0) {
        ::close(socket);
    }
    return socket >= 0;
}

} // namespace brimlet
