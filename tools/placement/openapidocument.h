#pragma once

#include <string_view>

namespace brimlet::placement {

/// The text of docs/service/openapi.yaml.
[[nodiscard]] std::string_view openApiDocument();

} // namespace brimlet::placement
