#include "bench/rates.h"

#include <algorithm>
#include <cstddef>

namespace brimlet {

Spent& Spent::operator+=(const Spent& other) {
    seconds += other.seconds;
    cpuMilliseconds += other.cpuMilliseconds;
    wakeUps += other.wakeUps;
    paints = paints && other.paints ? std::optional(*paints + *other.paints) : std::nullopt;
    pixels += other.pixels;
    return *this;
}

Rates ratesOf(const Spent& spent) {
    const double minutes = spent.seconds / 60;
    Rates rates{.cpuMilliseconds = spent.cpuMilliseconds / minutes,
                .wakeUps = spent.wakeUps / minutes};
    if (spent.paints) {
        rates.paints = *spent.paints / minutes;
        rates.pixelsPerPaint = *spent.paints > 0 ? spent.pixels / *spent.paints : 0;
    }
    return rates;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

Rates medianOf(const std::vector<Spent>& runs) {
    const auto medianBy = [&](auto field) {
        std::vector<double> values;
        values.reserve(runs.size());
        for (const Spent& run : runs) {
            values.push_back(field(ratesOf(run)));
        }
        return median(std::move(values));
    };
    Rates rates{.cpuMilliseconds = medianBy([](const Rates& run) { return run.cpuMilliseconds; }),
                .wakeUps = medianBy([](const Rates& run) { return run.wakeUps; })};
    if (std::all_of(runs.begin(), runs.end(),
                    [](const Spent& run) { return run.paints.has_value(); })) {
        rates.paints = medianBy([](const Rates& run) { return run.paints.value_or(0); });
        rates.pixelsPerPaint = medianBy([](const Rates& run) { return run.pixelsPerPaint; });
    }
    return rates;
}

} // namespace brimlet
