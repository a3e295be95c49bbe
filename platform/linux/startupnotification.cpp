#include "platform/linux/startupnotification.h"

#include "platform/linux/windowmanager.h"

namespace brimlet {
namespace {

QByteArray taken(const char* variable) {
    const QByteArray value = qgetenv(variable);
    qunsetenv(variable);
    return value;
}

} // namespace

QByteArray takeStartupId() {
    const QByteArray token = taken("XDG_ACTIVATION_TOKEN");
    const QByteArray id = taken("DESKTOP_STARTUP_ID");
    return id.isEmpty() ? token : id;
}

void leaveStartupId(const QByteArray& id) {
    if (!id.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", id);
    }
}

QByteArray startupIdIn(const QVariantMap& platformData) {
    const QString id = platformData.value(QStringLiteral("desktop-startup-id")).toString();
    return (id.isEmpty() ? platformData.value(QStringLiteral("activation-token")).toString() : id)
        .toUtf8();
}

void completeStartup(const QByteArray& id) {
    // The longest are names of programs and hosts with three numbers.
    constexpr qsizetype kLongest = 1024;
    if (!id.isEmpty() && id.size() <= kLongest) {
        QByteArray quoted = id;
        quoted.replace('\\', "\\\\").replace('"', "\\\"");
        x11::broadcastStartupInfo("remove: ID=\"" + quoted + '"');
    }
}

} // namespace brimlet
