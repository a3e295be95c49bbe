#pragma once

#include <QSet>
#include <QStringList>

namespace brimlet {

/// Facts about running processes, from the kernel.
namespace processfacts {

/// The number of this process's child that runs the program; -1 when there is none.
[[nodiscard]] qint64 childOf(const QString& program);

/// The peers of its sockets: "127.0.0.1:80" for a TCP connection, and a text that is no address for
/// a socket that listens or uses another protocol. Local sockets are left out.
[[nodiscard]] QSet<QString> peers(qint64 process);

/// The regular files that it has open for writing.
[[nodiscard]] QStringList filesBeingWritten(qint64 process);

/// The processes whose command line or initial environment contains the text, as far as they may be
/// read.
[[nodiscard]] QStringList processesKnowing(const QByteArray& text);

} // namespace processfacts
} // namespace brimlet
