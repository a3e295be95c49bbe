#pragma once

#include <QSet>
#include <QStringList>

namespace brimlet {

/// What the kernel tells of running processes.
namespace processfacts {

/// This process's child of that program; -1 when there is none.
[[nodiscard]] qint64 childOf(const QString& program);

/// Whom its sockets reach: "127.0.0.1:80" for a connection over TCP, and words that are no address
/// for a socket that listens or speaks anything else than TCP. Local sockets are left out.
[[nodiscard]] QSet<QString> peers(qint64 process);

/// The regular files that it has open for writing.
[[nodiscard]] QStringList filesBeingWritten(qint64 process);

/// The processes whose command line or first environment holds the text, as far as they may be
/// read.
[[nodiscard]] QStringList processesKnowing(const QByteArray& text);

} // namespace processfacts
} // namespace brimlet
