#pragma once

#include <functional>
#include <map>
#include <string>

namespace brimlet::placement {

/// The sample brands' pictures as PNG bytes, 256 pixels a side, by brand name. Drawn at each call.
/// Needs no application object, since no text is drawn.
[[nodiscard]] std::map<std::string, std::string, std::less<>> drawPictures();

} // namespace brimlet::placement
