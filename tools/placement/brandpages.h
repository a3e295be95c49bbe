#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace brimlet::placement {

/// The HTML page of a sample brand; absent when there is no brand of that name.
[[nodiscard]] std::optional<std::string> brandPage(std::string_view name);

} // namespace brimlet::placement
