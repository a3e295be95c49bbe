#include "tools/fleet/latencies.h"

#include <algorithm>
#include <cmath>

namespace brimlet::fleet {

float percentile(const std::vector<float>& sorted, double percent) {
    const double rank = std::ceil(percent / 100 * static_cast<double>(sorted.size()));
    const auto place = static_cast<std::size_t>(std::max(rank, 1.0)) - 1;
    return sorted.at(std::min(place, sorted.size() - 1));
}

void Latencies::prepare(std::size_t count) {
    m_samples.resize(count); // writes to the pages, so that they are resident
    m_samples.clear();
}

Latencies::Summary Latencies::summary() const {
    if (m_samples.empty()) {
        return {};
    }
    std::vector<float> sorted = m_samples;
    std::sort(sorted.begin(), sorted.end());
    return {percentile(sorted, 50), percentile(sorted, 90), percentile(sorted, 99), sorted.back()};
}

} // namespace brimlet::fleet
