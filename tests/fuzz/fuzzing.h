#pragma once

#include <QByteArray>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace brimlet {

/// Runs a check over the bytes and aborts when it reports something, which libFuzzer records. The
/// bytes are not copied, so that a sanitizer detects reads past their end.
inline int runCheck(const std::uint8_t* data, std::size_t size,
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
