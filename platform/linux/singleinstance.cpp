#include "platform/linux/singleinstance.h"

#include "platform/linux/unixsignals.h"
#include "platform/linux/xdgcachesfolder.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDir>
#include <QFile>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace brimlet {
namespace {

/// Milliseconds within which a program that is alive answers.
constexpr int kPatience = 3000;

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

SingleInstance::SingleInstance(QString name)
    : m_name(std::move(name)) {}

SingleInstance::Claim SingleInstance::claim() {
    // First, so that one who finds the lock held does not end its holder.
    catchSignals();
    const bool hasBus = QDBusConnection::sessionBus().isConnected();
    // The one that runs may end just when it is asked; then this one takes over.
    constexpr int kAttempts = 3;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (hasBus ? ownName() : lock()) {
            return Claim::First;
        }
        const Answer answer = ask(InstanceRequest::Open);
        if (answer != Answer::Nobody) {
            return answer == Answer::Done ? Claim::Second : Claim::NoAnswer;
        }
    }
    return Claim::NoAnswer;
}

void SingleInstance::catchSignals() {
    for (const InstanceRequest request : {InstanceRequest::Open, InstanceRequest::Pause}) {
        onUnixSignal(signalOf(request), [this, request] { Q_EMIT requested(request); });
    }
}

SingleInstance::Answer SingleInstance::ask(InstanceRequest request) const {
    return QDBusConnection::sessionBus().isConnected() ? askOverBus(request) : askBySignal(request);
}

bool SingleInstance::ownName() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (children().isEmpty()) {
        new FreedesktopApplication(this,
                                   [this](InstanceRequest request) { Q_EMIT requested(request); });
    }
    // The object first, so that nobody who finds the name finds nothing behind it.
    bus.registerObject(objectPath(), this, QDBusConnection::ExportAdaptors);
    const auto reply =
        bus.interface()->registerService(m_name, QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::DontAllowReplacement);
    return reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

SingleInstance::Answer SingleInstance::askOverBus(InstanceRequest request) const {
    const QString interface = QStringLiteral("org.freedesktop.Application");
    QDBusMessage call;
    if (request == InstanceRequest::Open) {
        call = QDBusMessage::createMethodCall(m_name, objectPath(), interface,
                                              QStringLiteral("Activate"));
        call.setArguments({QVariantMap()});
    } else {
        call = QDBusMessage::createMethodCall(m_name, objectPath(), interface,
                                              QStringLiteral("ActivateAction"));
        call.setArguments(
            {request == InstanceRequest::Pause ? QStringLiteral("pause") : QStringLiteral("quit"),
             QVariantList(), QVariantMap()});
    }
    call.setAutoStartService(false);
    const QDBusMessage answer = QDBusConnection::sessionBus().call(call, QDBus::Block, kPatience);
    if (answer.type() == QDBusMessage::ReplyMessage) {
        return Answer::Done;
    }
    const QDBusError error(answer);
    const bool isThere =
        error.type() != QDBusError::ServiceUnknown &&
        error.name() != QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");
    return isThere ? Answer::None : Answer::Nobody;
}

bool SingleInstance::lock() {
    if (m_lock < 0) {
        m_lock = ::open(QFile::encodeName(lockFile()).constData(),
                        O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, S_IRUSR | S_IWUSR);
    }
    struct flock whole = wholeFile();
    // Where no file can be made or locked nobody can be told from anybody.
    return m_lock < 0 || ::fcntl(m_lock, F_SETLK, &whole) == 0 ||
           (errno != EACCES && errno != EAGAIN);
}

SingleInstance::Answer SingleInstance::askBySignal(InstanceRequest request) const {
    const int file = m_lock >= 0 ? m_lock
                                 : ::open(QFile::encodeName(lockFile()).constData(),
                                          O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    struct flock whole = wholeFile();
    // The system knows who holds the lock, so nothing that was left in a file is trusted.
    const bool isHeld = file >= 0 && ::fcntl(file, F_GETLK, &whole) == 0 &&
                        whole.l_type == F_WRLCK && whole.l_pid > 0;
    if (file >= 0 && file != m_lock) {
        ::close(file);
    }
    return isHeld && ::kill(whole.l_pid, signalOf(request)) == 0 ? Answer::Done : Answer::Nobody;
}

QString SingleInstance::objectPath() const {
    return u'/' + QString(m_name).replace(u'.', u'/');
}

QString SingleInstance::lockFile() const {
    QString folder = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    if (!folder.startsWith(u'/')) {
        folder = *XdgCachesFolder().path();
        QDir().mkpath(folder);
    }
    return QDir(folder).filePath(m_name + QStringLiteral(".lock"));
}

} // namespace brimlet
