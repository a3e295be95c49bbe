#include "tests/support/sessionfolders.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFile>

#include <algorithm>
#include <array>

#include <sys/inotify.h>
#include <unistd.h>

namespace brimlet {
namespace {

/// The variables of the folders in which a program may store files.
const std::array kFolders{"HOME",           "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME",
                          "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"};

/// Files that other processes write during the run.
const QStringList kForeign{
    QStringLiteral("$XDG_DATA_HOME/keyrings"),    // the secret store, encrypted
    QStringLiteral("$XDG_RUNTIME_DIR/keyring"),   // its sockets
    QStringLiteral("$XDG_CACHE_HOME/fontconfig"), // the font library
    QStringLiteral("$XDG_CACHE_HOME/openbox"),    // the window manager
};

QString variable(const char* name) {
    return qEnvironmentVariable(name);
}

} // namespace

QString named(const QString& path) {
    for (const char* folder : kFolders) {
        if (path.startsWith(variable(folder) + u'/')) {
            return u'$' + QString::fromLatin1(folder) + path.mid(variable(folder).size());
        }
    }
    return path;
}

QString unnamed(const QString& path) {
    const QString folder = path.mid(1).section(u'/', 0, 0);
    return qEnvironmentVariable(folder.toLatin1().constData()) + path.mid(folder.size() + 1);
}

QMap<QString, QString> kept() {
    QMap<QString, QString> found;
    for (const char* folder : kFolders) {
        QDirIterator entries(variable(folder),
                             QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            const QString path = named(entries.next());
            const QFileInfo info = entries.fileInfo();
            const bool isForeign =
                std::any_of(kForeign.cbegin(), kForeign.cend(), [&path](const QString& foreign) {
                    return path == foreign || path.startsWith(foreign + u'/');
                });
            if (!isForeign) {
                found.insert(path, info.isDir()
                                       ? QStringLiteral("folder")
                                       : QStringLiteral("%1 bytes, %2")
                                             .arg(info.size())
                                             .arg(info.lastModified().toMSecsSinceEpoch()));
            }
        }
    }
    return found;
}

QStringList filesHolding(const QString& text) {
    const QByteArray wide(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
    QStringList found;
    for (const char* folder : kFolders) {
        QDirIterator entries(variable(folder), QDir::Files | QDir::Hidden,
                             QDirIterator::Subdirectories);
        while (entries.hasNext()) {
            QFile file(entries.next());
            if (!file.open(QIODevice::ReadOnly)) {
                continue;
            }
            const QByteArray bytes = file.readAll();
            if (bytes.contains(text.toUtf8()) || bytes.contains(text.toUtf8().toBase64()) ||
                bytes.contains(wide)) {
                found << file.fileName();
            }
        }
    }
    return found;
}

FolderWatch::FolderWatch(const QString& folder)
    : m_descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    ::inotify_add_watch(m_descriptor, QFile::encodeName(folder).constData(),
                        IN_CREATE | IN_MOVED_TO);
}

FolderWatch::~FolderWatch() {
    ::close(m_descriptor);
}

QStringList FolderWatch::names() const {
    QStringList names;
    alignas(inotify_event) std::array<char, 65536> buffer{};
    for (ssize_t size = ::read(m_descriptor, buffer.data(), buffer.size()); size > 0;
         size = ::read(m_descriptor, buffer.data(), buffer.size())) {
        for (const char* at = buffer.data(); at < buffer.data() + size;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(at);
            names << QFile::decodeName(event->name);
            at += sizeof(inotify_event) + event->len;
        }
    }
    return names;
}

} // namespace brimlet
