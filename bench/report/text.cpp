#include "bench/report/text.h"

#include <cmath>
#include <cstdio>

namespace brimlet {

std::string textOf(std::optional<double> value) {
    if (!value) {
        return "–";
    }
    const double size = std::abs(*value);
    int decimals = 2;
    if (*value == std::round(*value) || size >= 99.95) {
        decimals = 0;
    } else if (size >= 9.995) {
        decimals = 1;
    } else if (size < 0.0995) {
        decimals = 3;
    }
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, *value);
    return text;
}

std::optional<double> ratio(std::optional<double> first, std::optional<double> second) {
    if (!first || !second || *second == 0) {
        return std::nullopt;
    }
    return *first / *second;
}

} // namespace brimlet
