#pragma once

#include <cstddef>
#include <vector>

namespace brimlet::fleet {

/// The durations of requests, in milliseconds.
class Latencies final {
public:
    struct Summary final {
        double p50 = 0;
        double p90 = 0;
        double p99 = 0;
        double max = 0;

        bool operator==(const Summary&) const = default;
    };

    /// Allocates memory for this many samples, so that adding them allocates nothing.
    void prepare(std::size_t count);
    void add(double milliseconds) { m_samples.push_back(static_cast<float>(milliseconds)); }
    void clear() { m_samples.clear(); }
    [[nodiscard]] std::size_t count() const { return m_samples.size(); }
    /// All zero without a sample.
    [[nodiscard]] Summary summary() const;

private:
    std::vector<float> m_samples;
};

/// The smallest of the sorted samples, of which there is at least one, that `percent` per cent of
/// them do not exceed.
[[nodiscard]] float percentile(const std::vector<float>& sorted, double percent);

} // namespace brimlet::fleet
