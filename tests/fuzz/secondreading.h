#pragma once

#include "host/assignment.h"

#include <QByteArray>

namespace brimlet {

// Reads a reply's body with Qt's JSON reader and compares. Returns what is read differently, empty
// when nothing is, or when Qt refuses the body or is known to read it otherwise.

[[nodiscard]] QByteArray secondReadingOfDisplay(const QByteArray& body,
                                                const Assignment& assignment);

/// `agreementBefore` is the text that stays when the body has none.
[[nodiscard]] QByteArray secondReadingOfHost(const QByteArray& body, const Assignment& assignment,
                                             const QString& agreementBefore);

} // namespace brimlet
