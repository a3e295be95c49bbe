#pragma once

#include <string>

namespace brimlet::placement {

/// The HTML page of the service: what it is, and the whole document that it keeps to. It loads
/// nothing.
[[nodiscard]] std::string documentPage();

} // namespace brimlet::placement
