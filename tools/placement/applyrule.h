#pragma once

#include "tools/placement/answer.h"
#include "tools/placement/scenario.h"

namespace brimlet::placement {

/// Turns the service's own answer into what the scenario wants of that path. Only a reply of status
/// 200 has keys merged and removed; everything else applies to errors too.
void applyRule(const EndpointRule& rule, Answer& answer);

} // namespace brimlet::placement
