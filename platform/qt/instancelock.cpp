#include "platform/qt/instancelock.h"

#include "platform/qt/unixsignals.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brimlet {
namespace {

int signalOf(InstanceRequest request) {
    switch (request) {
    case InstanceRequest::Pause:
        return SIGUSR2;
    case InstanceRequest::Quit:
        return SIGTERM;
    case InstanceRequest::Open:
        break;
    }
    return SIGUSR1;
}

struct flock wholeFile() {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    return lock;
}

} // namespace

InstanceLock::InstanceLock(QString file)
    : m_file(std::move(file)) {}

InstanceClaim InstanceLock::claim() {
    // First, so that one who finds the lock held does not end its holder.
    hearRequests();
    // The one that runs may end just when it is asked; then this one takes over.
    constexpr int kAttempts = 3;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (lock()) {
            return InstanceClaim::First;
        }
        if (ask(InstanceRequest::Open)) {
            return InstanceClaim::Second;
        }
    }
    return InstanceClaim::NoAnswer;
}

bool InstanceLock::ask(InstanceRequest request) const {
    // Never a second descriptor of a file that is locked here: closing it would unlock it.
    const int file = m_descriptor >= 0 ? m_descriptor
                                       : ::open(QFile::encodeName(m_file).constData(),
                                                O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    struct flock whole = wholeFile();
    // The system knows who holds the lock, so nothing that was left in a file is trusted.
    const bool isHeld = file >= 0 && ::fcntl(file, F_GETLK, &whole) == 0 &&
                        whole.l_type == F_WRLCK && whole.l_pid > 0;
    if (file >= 0 && file != m_descriptor) {
        ::close(file);
    }
    return isHeld && ::kill(whole.l_pid, signalOf(request)) == 0;
}

void InstanceLock::hearRequests() {
    for (const InstanceRequest request : {InstanceRequest::Open, InstanceRequest::Pause}) {
        onUnixSignal(signalOf(request), [this, request] { Q_EMIT requested(request); });
    }
}

bool InstanceLock::lock() {
    if (m_descriptor < 0) {
        m_descriptor = ::open(QFile::encodeName(m_file).constData(),
                              O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    }
    struct flock whole = wholeFile();
    // Where no file can be made or locked nobody can be told from anybody.
    return m_descriptor < 0 || ::fcntl(m_descriptor, F_SETLK, &whole) == 0 ||
           (errno != EACCES && errno != EAGAIN);
}

} // namespace brimlet
