#pragma once

#include <optional>
#include <vector>

namespace brimlet {

/// What a program spent in a while.
struct Spent final {
    double seconds = 0;
    double cpuMilliseconds = 0;
    double wakeUps = 0;
    std::optional<double> paints{}; ///< Absent where nobody counted.
    double pixels = 0;              ///< What the paints covered.

    Spent& operator+=(const Spent& other);
};

/// The same for a minute.
struct Rates final {
    double cpuMilliseconds = 0;
    double wakeUps = 0;
    std::optional<double> paints{};
    double pixelsPerPaint = 0;
};

[[nodiscard]] Rates ratesOf(const Spent& spent);

/// Of at least one value.
[[nodiscard]] double median(std::vector<double> values);

/// Each rate's median over at least one run; paints are absent unless all runs have them.
[[nodiscard]] Rates medianOf(const std::vector<Spent>& runs);

} // namespace brimlet
