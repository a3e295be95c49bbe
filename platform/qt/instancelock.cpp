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

std::optional<InstanceAnswer> InstanceLock::claim(StartReason reason) {
    // Before the lock: by default these signals end the process that others find holding it.
    for (const InstanceRequest request : {InstanceRequest::Open, InstanceRequest::Pause}) {
        onUnixSignal(signalOf(request), [this, request] { Q_EMIT requested(request); });
    }
    // The running process may end while it is asked; then this one takes over.
    constexpr int kAttempts = 3;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (lock()) {
            return std::nullopt;
        }
        if (reason == StartReason::Session) {
            return InstanceAnswer::Done;
        }
        const InstanceAnswer answer = ask(InstanceRequest::Open);
        if (answer != InstanceAnswer::NotRunning) {
            return answer;
        }
    }
    return InstanceAnswer::NoAnswer;
}

InstanceAnswer InstanceLock::ask(InstanceRequest request) const {
    // Never a second descriptor of a file that is locked here: closing it would release the lock.
    const int file = m_descriptor >= 0 ? m_descriptor
                                       : ::open(QFile::encodeName(m_file).constData(),
                                                O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    struct flock whole = wholeFile();
    // The process ID is the kernel's, so the file's content is never trusted.
    const bool isHeld = file >= 0 && ::fcntl(file, F_GETLK, &whole) == 0 &&
                        whole.l_type == F_WRLCK && whole.l_pid > 0;
    if (file >= 0 && file != m_descriptor) {
        ::close(file);
    }
    return isHeld && ::kill(whole.l_pid, signalOf(request)) == 0 ? InstanceAnswer::Done
                                                                 : InstanceAnswer::NotRunning;
}

bool InstanceLock::lock() {
    if (m_descriptor < 0) {
        m_descriptor = ::open(QFile::encodeName(m_file).constData(),
                              O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    }
    struct flock whole = wholeFile();
    // Where no file can be created or locked, other processes cannot be found.
    return m_descriptor < 0 || ::fcntl(m_descriptor, F_SETLK, &whole) == 0 ||
           (errno != EACCES && errno != EAGAIN);
}

} // namespace brimlet
