#include "tests/support/processfacts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

namespace brimlet::processfacts {
namespace {

QString folderOf(qint64 process) {
    return QStringLiteral("/proc/%1/").arg(process);
}

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The target of a link under /proc, which need not be a path.
QString target(const QString& link) {
    QByteArray text(4096, '\0');
    const auto size = ::readlink(QFile::encodeName(link).constData(), text.data(),
                                 static_cast<std::size_t>(text.size()));
    return size < 0 ? QString() : QFile::decodeName(text.left(size));
}

QStringList descriptors(qint64 process) {
    return QDir(folderOf(process) + QStringLiteral("fd"))
        .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
}

/// The kernel's "0100007F:1F90" in the usual form; only the port for longer addresses.
QString readable(const QByteArray& address) {
    const QList<QByteArray> parts = address.split(':');
    const quint32 host = parts.at(0).toUInt(nullptr, 16);
    const QString port = QString::number(parts.at(1).toUInt(nullptr, 16));
    if (parts.at(0).size() != 8) {
        return QString::fromLatin1(parts.at(0)) + u' ' + port;
    }
    return QStringLiteral("%1.%2.%3.%4:%5")
        .arg(host & 0xFFU)
        .arg(host >> 8U & 0xFFU)
        .arg(host >> 16U & 0xFFU)
        .arg(host >> 24U)
        .arg(port);
}

} // namespace

qint64 childOf(const QString& program) {
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const qint64 process = name.toLongLong();
        const QByteArray status = contents(folderOf(process) + QStringLiteral("status"));
        if (process > 0 &&
            status.contains("\nPPid:\t" + QByteArray::number(QCoreApplication::applicationPid()) +
                            '\n') &&
            // Not the file that it runs: an emulated processor's is the emulator.
            status.startsWith("Name:\t" + program.left(15).toLatin1() + '\n')) {
            return process;
        }
    }
    return -1;
}

QSet<QString> peers(qint64 process) {
    QSet<QByteArray> sockets;
    for (const QString& descriptor : descriptors(process)) {
        const QString link = target(folderOf(process) + QStringLiteral("fd/") + descriptor);
        if (link.startsWith(QStringLiteral("socket:["))) {
            sockets << link.mid(8).chopped(1).toLatin1();
        }
    }
    QSet<QString> found;
    for (const char* protocol : {"tcp", "tcp6", "udp", "udp6", "udplite", "udplite6", "raw", "raw6",
                                 "icmp", "icmp6", "packet"}) {
        const QString name = QString::fromLatin1(protocol);
        const auto lines =
            contents(folderOf(process) + QStringLiteral("net/") + name).split('\n').mid(1);
        for (const QByteArray& line : lines) {
            const QList<QByteArray> words = line.simplified().split(' ');
            // The socket's inode is in the last column of "packet", otherwise in the tenth.
            const qsizetype column = name == u"packet" ? 8 : 9;
            if (words.size() <= column || !sockets.contains(words.at(column))) {
                continue;
            }
            const bool isListening = words.at(3) == "0A";
            found << (isListening || !name.startsWith(u"tcp")
                          ? QStringLiteral("a socket of ") + name
                          : readable(words.at(2)));
        }
    }
    return found;
}

QStringList filesBeingWritten(qint64 process) {
    QStringList files;
    // Inherited descriptors do not count: the tests may have been started with an open log.
    QSet<QString> inherited;
    for (const QString& descriptor : descriptors(QCoreApplication::applicationPid())) {
        inherited << target(folderOf(QCoreApplication::applicationPid()) + QStringLiteral("fd/") +
                            descriptor);
    }
    for (const QString& descriptor : descriptors(process)) {
        const QString link = folderOf(process) + QStringLiteral("fd/") + descriptor;
        const QString path = target(link);
        const QByteArray facts =
            contents(folderOf(process) + QStringLiteral("fdinfo/") + descriptor);
        const QByteArray flags = facts.mid(facts.indexOf("flags:") + 6).trimmed();
        const int mode = flags.left(flags.indexOf('\n')).toInt(nullptr, 8) & O_ACCMODE;
        // Anonymous memory has a path, too.
        if (mode != O_RDONLY && QFileInfo(link).isFile() && !path.startsWith(u"/memfd:") &&
            !inherited.contains(path)) {
            files << path;
        }
    }
    return files;
}

QStringList processesKnowing(const QByteArray& text) {
    QStringList found;
    for (const QString& name : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
        const qint64 process = name.toLongLong();
        for (const char* file : {"cmdline", "environ"}) {
            if (process > 0 &&
                contents(folderOf(process) + QString::fromLatin1(file)).contains(text)) {
                found << folderOf(process) + QString::fromLatin1(file);
            }
        }
    }
    return found;
}

} // namespace brimlet::processfacts
