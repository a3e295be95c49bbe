#pragma once

#include <optional>
#include <string>

namespace brimlet {

/// A number for people: three figures that count, e.g. "0.49", "9.81", "12.6", "364", whole ones
/// without decimals, and "–" for none.
[[nodiscard]] std::string textOf(std::optional<double> value);

/// How many times the second the first is; none unless there are both and the second is not zero.
[[nodiscard]] std::optional<double> ratio(std::optional<double> first,
                                          std::optional<double> second);

} // namespace brimlet
