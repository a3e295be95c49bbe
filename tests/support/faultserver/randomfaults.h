#pragma once

#include "tests/support/faultserver/faultscript.h"

#include <QRandomGenerator>

namespace brimlet {

/// Something that goes wrong with a reply that was meant to be these bytes, head and body. The same
/// generator gives the same faults. None of them lasts: the connection is cut or the reply is over.
[[nodiscard]] FaultSteps randomFault(QRandomGenerator& random, const QByteArray& good);

} // namespace brimlet
