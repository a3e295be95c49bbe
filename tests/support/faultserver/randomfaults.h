#pragma once

#include "tests/support/faultserver/faultscript.h"

#include <QRandomGenerator>

namespace brimlet {

/// Steps for a random fault in the reply with these bytes, head and body. The same state of the
/// generator gives the same fault. None lasts: the connection is closed or the reply ends.
[[nodiscard]] FaultSteps randomFault(QRandomGenerator& random, const QByteArray& good);

} // namespace brimlet
