#include "host/json.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

namespace brimlet {
namespace {

/// Larger than the number of digits in any reply, so clamping to it does not change the result.
constexpr int kMaxExponent = 100'000'000;
/// Replaces every number that is not whole; no field accepts a fraction.
constexpr double kPlaceholderFraction = 0.5;

/// The value of a number's text if it is exactly a whole number within 64 signed bits. A double has
/// only 53 bits and would round it.
std::optional<std::int64_t> exactWholeNumber(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    text.remove_prefix(isNegative ? 1 : 0);
    const auto exponentMark = std::min(text.find_first_of("eE"), text.size());
    std::string digits;
    int scale = 0; // the value is `digits` times ten to this power
    bool isInFraction = false;
    for (const char c : text.substr(0, exponentMark)) {
        if (c < '0' || c > '9') {
            isInFraction = true; // the decimal point, perhaps in the locale's form
        } else if (!digits.empty() || c != '0') {
            digits += c;
        }
        scale -= isInFraction && c >= '0' && c <= '9' ? 1 : 0;
    }
    while (digits.ends_with('0')) {
        digits.pop_back();
        ++scale;
    }
    if (digits.empty()) {
        return 0;
    }
    if (exponentMark < text.size()) {
        std::string_view power = text.substr(exponentMark + 1);
        power.remove_prefix(power.starts_with('+') ? 1 : 0);
        int exponent = 0;
        if (std::from_chars(power.data(), power.data() + power.size(), exponent).ec !=
            std::errc{}) {
            return std::nullopt;
        }
        scale = std::clamp(exponent, -kMaxExponent, kMaxExponent) + scale;
    }
    constexpr std::size_t kMaxDigits = 19;
    if (scale < 0 || digits.size() + static_cast<std::size_t>(scale) > kMaxDigits) {
        return std::nullopt;
    }
    digits.append(static_cast<std::size_t>(scale), '0');
    digits.insert(0, isNegative ? "-" : "");
    std::int64_t value = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return read.ec == std::errc{} ? std::optional(value) : std::nullopt;
}

/// The library's DOM parser, except that it keeps whole numbers exactly however they are written,
/// and records whether it stopped because a number was too large. The base class is internal to
/// nlohmann/json 3.11, but reimplementing it would take forty lines.
class Reader final : public nlohmann::detail::json_sax_dom_parser<Json> {
public:
    explicit Reader(Json& result)
        : json_sax_dom_parser(result, false) {}

    bool number_float(double /*value*/, const std::string& text) {
        const auto whole = exactWholeNumber(text);
        return whole ? number_integer(*whole)
                     : json_sax_dom_parser::number_float(kPlaceholderFraction, text);
    }

    template <typename Error>
    bool parse_error(std::size_t position, const std::string& token, const Error& error) {
        constexpr int kNumberOverflow = 406;
        m_isNumberTooLarge = error.id == kNumberOverflow;
        return json_sax_dom_parser::parse_error(position, token, error);
    }

    [[nodiscard]] bool isNumberTooLarge() const { return m_isNumberTooLarge; }

private:
    bool m_isNumberTooLarge = false;
};

struct Outcome {
    std::optional<Json> value;
    bool isNumberTooLarge = false;
};

Outcome parseOnce(std::string_view text) {
    Json root;
    Reader reader(root);
    const bool isValid = Json::sax_parse(text.begin(), text.end(), &reader);
    Outcome outcome;
    outcome.isNumberTooLarge = reader.isNumberTooLarge();
    if (isValid) {
        outcome.value = std::move(root);
    }
    return outcome;
}

/// Whether the whole text is one number in JSON syntax, of any size.
bool isNumber(std::string_view text) {
    const auto skip = [&text](std::string_view characters, std::size_t most) {
        const auto count = std::min({text.find_first_not_of(characters), text.size(), most});
        text.remove_prefix(count);
        return count > 0;
    };
    const auto skipDigits = [&skip] { return skip("0123456789", std::string_view::npos); };
    skip("-", 1);
    if (!skip("0", 1) && !skipDigits()) {
        return false;
    }
    if (skip(".", 1) && !skipDigits()) {
        return false;
    }
    if (skip("eE", 1)) {
        skip("+-", 1);
        if (!skipDigits()) {
            return false;
        }
    }
    return text.empty();
}

/// Whether the whole text is one well-formed number too large for a double. Not std::from_chars,
/// which macOS lacks for doubles.
bool isHugeNumber(std::string_view text) {
    constexpr std::size_t kDigitsOfLargest = 309;
    const bool mayBe =
        text.size() >= kDigitsOfLargest || text.find_first_of("eE") != std::string_view::npos;
    return mayBe && isNumber(text) && parseOnce(text).isNumberTooLarge;
}

/// Replaces each number beyond the range of a double by a fraction, which no field accepts. Strings
/// stay as they are, and malformed text stays malformed.
std::string withoutHugeNumbers(std::string_view text) {
    constexpr std::string_view kNumberCharacters = "0123456789+-.eE";
    std::string out;
    out.reserve(text.size());
    bool inString = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString || kNumberCharacters.find(c) == std::string_view::npos) {
            out += c;
            if (inString && c == '\\' && i + 1 < text.size()) {
                out += text[++i];
            } else if (c == '"') {
                inString = !inString;
            }
            continue;
        }
        const auto end = std::min(text.find_first_not_of(kNumberCharacters, i), text.size());
        const auto number = text.substr(i, end - i);
        out += isHugeNumber(number) ? std::string_view("0.5") : number;
        i = end - 1;
    }
    return out;
}

} // namespace

std::optional<Json> parseJson(const QByteArray& text) {
    const std::string_view view(text.constData(), static_cast<std::size_t>(text.size()));
    if (view.find('\0') != std::string_view::npos) {
        return std::nullopt; // the parser would stop there and ignore the rest
    }
    Outcome outcome = parseOnce(view);
    if (!outcome.value && outcome.isNumberTooLarge) {
        outcome = parseOnce(withoutHugeNumbers(view));
    }
    return std::move(outcome.value);
}

} // namespace brimlet
