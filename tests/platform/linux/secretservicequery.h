#pragma once

#include <QProcess>

namespace brimlet {

/// The number of the Secret Service's items of that name, including locked ones; -1 when the
/// service does not answer. Neither argument may contain a comma.
inline qsizetype secretServiceCount(const QString& service, const QString& account) {
    QProcess question;
    question.start(
        QStringLiteral("dbus-send"),
        {QStringLiteral("--session"), QStringLiteral("--print-reply"),
         QStringLiteral("--dest=org.freedesktop.secrets"),
         QStringLiteral("/org/freedesktop/secrets"),
         QStringLiteral("org.freedesktop.Secret.Service.SearchItems"),
         QStringLiteral("dict:string:string:service,%1,account,%2").arg(service, account)});
    if (!question.waitForFinished() || question.exitCode() != 0) {
        return -1;
    }
    return question.readAllStandardOutput().count("object path");
}

} // namespace brimlet
