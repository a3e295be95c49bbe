#include "platform/linux/linuxbundle.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

namespace brimlet {
namespace {

/// The parent of the folder the executable is in.
[[nodiscard]] QString installationFolder(const QString& executable) {
    return QFileInfo(QFileInfo(executable).path()).path();
}

[[nodiscard]] QString resolved(const QString& executable) {
    const QFileInfo file(executable);
    const QString canonical = file.canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(file.absoluteFilePath()) : canonical;
}

} // namespace

QString bundlePath(const QString& resolvedExecutable) {
    const bool isPackaged = resolvedExecutable.startsWith(QLatin1StringView("/usr/")) ||
                            resolvedExecutable.startsWith(QLatin1StringView("/opt/"));
    return isPackaged ? QStringLiteral("/Applications/Brimlet.app")
                      : installationFolder(resolvedExecutable);
}

LinuxBundle::LinuxBundle(const QString& executable) {
    const QString file = resolved(executable);
    m_path = bundlePath(file);
    m_infoFile = installationFolder(file) + QLatin1StringView("/share/brimlet/info.json");
}

QVariant LinuxBundle::infoDictionaryValue(const QString& key) const {
    QFile file(m_infoFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const QJsonObject info = QJsonDocument::fromJson(file.readAll()).object();
    return info.contains(key) ? info.value(key).toVariant() : QVariant();
}

QString LinuxBundle::identifier() const {
    return QStringLiteral("app.brimlet.host");
}

} // namespace brimlet
