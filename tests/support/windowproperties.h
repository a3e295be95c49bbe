#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QtGui/qwindowdefs.h>

namespace brimlet {

/// An X window's properties of these names, as xprop prints them; empty when xprop fails.
[[nodiscard]] inline QByteArray propertiesOf(WId window, const QStringList& names) {
    QProcess xprop;
    xprop.start(QStringLiteral("xprop"),
                QStringList{QStringLiteral("-id"), QString::number(window)} + names);
    return xprop.waitForFinished() ? xprop.readAllStandardOutput() : QByteArray();
}

} // namespace brimlet
