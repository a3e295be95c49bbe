#pragma once

#include <QByteArray>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace brimlet {

/// Has a check look at the bytes, and ends the program when it says what is wrong: that is how
/// libFuzzer learns of it. The bytes are not copied, so that a look past the end is seen.
inline int judge(const std::uint8_t* data, std::size_t size,
                 QByteArray (*check)(const QByteArray& input)) {
    const auto input =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QByteArray wrong = check(input);
    if (!wrong.isEmpty()) {
        std::fprintf(stderr, "WRONG: %s\n", wrong.constData());
        std::abort();
    }
    return 0;
}

} // namespace brimlet
