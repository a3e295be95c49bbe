#pragma once

#include <cstddef>
#include <vector>

namespace brimlet::fleet {

/// How long requests took, in milliseconds.
class Latencies final {
public:
    struct Summary final {
        double p50 = 0;
        double p90 = 0;
        double p99 = 0;
        double max = 0;

        bool operator==(const Summary&) const = default;
    };

    /// Has the memory for this many at hand, so that taking them costs none later.
    void prepare(std::size_t count);
    void add(double milliseconds) { m_samples.push_back(static_cast<float>(milliseconds)); }
    void clear() { m_samples.clear(); }
    [[nodiscard]] std::size_t count() const { return m_samples.size(); }
    /// All zero without a sample.
    [[nodiscard]] Summary summary() const;

private:
    std::vector<float> m_samples;
};

/// The smallest of the sorted samples that `percent` per cent of all do not exceed; there is at
/// least one sample.
[[nodiscard]] float percentile(const std::vector<float>& sorted, double percent);

} // namespace brimlet::fleet
