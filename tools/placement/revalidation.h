#pragma once

#include "tools/placement/answer.h"

namespace brimlet::placement {

/// Adds an ETag to the 200 reply to a GET or HEAD of an endpoint, unless the scenario has set one,
/// and replaces the reply by a 304 without a body when If-None-Match names that tag. Replies with a
/// fault or another status stay unchanged.
void revalidate(const Incoming& request, Answer& answer);

} // namespace brimlet::placement
