#pragma once

#include "tools/placement/answer.h"
#include "tools/placement/scenario.h"

namespace brimlet::placement {

/// Applies a scenario's rule for the path to the service's own answer. Keys are merged and removed
/// only in a reply of status 200; everything else applies to errors too.
void applyRule(const EndpointRule& rule, Answer& answer);

} // namespace brimlet::placement
