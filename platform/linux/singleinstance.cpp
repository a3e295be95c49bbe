#include "platform/linux/singleinstance.h"

#include "platform/linux/freedesktopapplication.h"
#include "platform/linux/xdgcachesfolder.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDir>
#include <QFile>

#include <utility>

namespace brimlet {
namespace {

/// Milliseconds within which a program that is alive answers.
constexpr int kPatience = 3000;

/// Empty where the session has none.
QString runtimeFolder() {
    const QString folder = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    return folder.startsWith(u'/') ? folder : QString();
}

QString lockFile(const QString& name) {
    const QString folder = runtimeFolder();
    return QDir(folder.isEmpty() ? *XdgCachesFolder().path() : folder)
        .filePath(name + QStringLiteral(".lock"));
}

} // namespace

SingleInstance::SingleInstance(QString name)
    : m_name(std::move(name))
    , m_lock(lockFile(m_name)) {
    connect(&m_lock, &InstanceLock::requested, this, &SingleInstance::requested);
}

InstanceClaim SingleInstance::claim() {
    if (QDBusConnection::sessionBus().isConnected()) {
        m_lock.hearRequests();
        return claimOverBus();
    }
    if (runtimeFolder().isEmpty()) {
        QDir().mkpath(*XdgCachesFolder().path());
    }
    return m_lock.claim();
}

SingleInstance::Answer SingleInstance::ask(InstanceRequest request) const {
    if (QDBusConnection::sessionBus().isConnected()) {
        return askOverBus(request);
    }
    return m_lock.ask(request) ? Answer::Done : Answer::Nobody;
}

InstanceClaim SingleInstance::claimOverBus() {
    // The one that runs may end just when it is asked; then this one takes over.
    constexpr int kAttempts = 3;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (ownName()) {
            return InstanceClaim::First;
        }
        const Answer answer = askOverBus(InstanceRequest::Open);
        if (answer != Answer::Nobody) {
            return answer == Answer::Done ? InstanceClaim::Second : InstanceClaim::NoAnswer;
        }
    }
    return InstanceClaim::NoAnswer;
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

QString SingleInstance::objectPath() const {
    return u'/' + QString(m_name).replace(u'.', u'/');
}

} // namespace brimlet
