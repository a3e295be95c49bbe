#include "host/money.h"

#include <array>
#include <charconv>

namespace brimlet {

QString eurosWithCents(std::int64_t cents) {
    // At most 17 digits, a minus sign, a point and two decimals.
    std::array<char, 32> text{};
    const double euros = static_cast<double>(cents) / 100.0;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), euros, std::chars_format::fixed, 2)
            .ptr;
    return QStringLiteral("€") + QLatin1StringView(text.data(), end);
}

} // namespace brimlet
