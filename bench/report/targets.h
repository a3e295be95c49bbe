#pragma once

#include "bench/report/findings.h"

#include <optional>
#include <string>
#include <vector>

namespace brimlet {

/// What the program is to cost at the most, and what it does cost.
struct Target final {
    std::string what;
    std::optional<double> limit{};
    std::optional<double> value{};
    std::string unit{};
    bool isStrict = false; ///< Whether the value has to be less than the limit.

    /// Nothing when value or limit are not known.
    [[nodiscard]] std::optional<bool> isMet() const;
};

[[nodiscard]] std::vector<Target> targetsOf(const Findings& findings);

} // namespace brimlet
