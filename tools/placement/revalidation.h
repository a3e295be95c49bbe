#pragma once

#include "tools/placement/answer.h"

namespace brimlet::placement {

/// Names what a GET or HEAD of an endpoint is answered with by an ETag, unless the scenario has
/// done so, and makes the answer a 304 without a body where the client asked whether just that
/// still holds. Spoilt replies and others than a 200 stay as they are.
void revalidate(const Incoming& request, Answer& answer);

} // namespace brimlet::placement
