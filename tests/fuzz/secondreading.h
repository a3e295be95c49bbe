#pragma once

#include "host/assignment.h"

#include <QByteArray>

namespace brimlet {

// Compare an assignment with what Qt's JSON reader finds in the body. Return the difference, empty
// when there is none, or when Qt refuses the body or is known to read it differently.

[[nodiscard]] QByteArray secondReadingOfDisplay(const QByteArray& body,
                                                const Assignment& assignment);

/// `agreementBefore` is the text that stays when the body has none.
[[nodiscard]] QByteArray secondReadingOfHost(const QByteArray& body, const Assignment& assignment,
                                             const QString& agreementBefore);

} // namespace brimlet
