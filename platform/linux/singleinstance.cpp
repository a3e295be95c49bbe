#include "platform/linux/singleinstance.h"

#include "platform/linux/freedesktopapplication.h"
#include "platform/linux/xdgcachesfolder.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDir>
#include <QFile>

namespace brimlet {
namespace {

/// Milliseconds within which a program that does not hang answers.
constexpr int kPatience = 3000;

/// Empty if the session has none.
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

SingleInstance::SingleInstance(const QString& name)
    : InstanceLock(lockFile(name))
    , m_name(name) {}

std::optional<InstanceAnswer> SingleInstance::claim(StartReason reason) {
    if (runtimeFolder().isEmpty()) {
        QDir().mkpath(*XdgCachesFolder().path());
    }
    const auto answer = InstanceLock::claim(reason);
    if (!answer && QDBusConnection::sessionBus().isConnected()) {
        ownName();
    }
    return answer;
}

InstanceAnswer SingleInstance::ask(InstanceRequest request) const {
    if (QDBusConnection::sessionBus().isConnected()) {
        const InstanceAnswer answer = askOverBus(request);
        if (answer != InstanceAnswer::NotRunning) {
            return answer;
        }
    }
    // The process that runs may have no bus, or no name there yet.
    return InstanceLock::ask(request);
}

void SingleInstance::ownName() {
    new FreedesktopApplication(this,
                               [this](InstanceRequest request) { Q_EMIT requested(request); });
    // The object first, so that it is there as soon as the name has an owner.
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerObject(objectPath(), this, QDBusConnection::ExportAdaptors);
    bus.registerService(m_name);
}

InstanceAnswer SingleInstance::askOverBus(InstanceRequest request) const {
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
        return InstanceAnswer::Done;
    }
    const QDBusError error(answer);
    const bool isOwned =
        error.type() != QDBusError::ServiceUnknown &&
        error.name() != QStringLiteral("org.freedesktop.DBus.Error.NameHasNoOwner");
    return isOwned ? InstanceAnswer::NoAnswer : InstanceAnswer::NotRunning;
}

QString SingleInstance::objectPath() const {
    return u'/' + QString(m_name).replace(u'.', u'/');
}

} // namespace brimlet
