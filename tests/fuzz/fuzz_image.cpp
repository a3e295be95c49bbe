#include "tests/fuzz/fuzzing.h"
#include "tests/fuzz/imagecheck.h"
#include "tests/support/samplepictures.h"

#include <QtEndian>

#include <algorithm>

namespace brimlet {
namespace {

/// Corrects the checksum of every chunk of a PNG. A decoder stops at a wrong one, and random
/// changes hardly ever produce a right one.
void mendChecksums(std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kSignature = 8;
    constexpr std::size_t kFrame = 12;
    std::size_t at = kSignature;
    while (size >= kFrame && at <= size - kFrame) {
        const std::size_t length = qFromBigEndian<quint32>(data + at);
        if (length > size - kFrame - at) {
            return;
        }
        const auto* const chunk = reinterpret_cast<const char*>(data) + at;
        const QByteArray type(chunk + 4, 4);
        const QByteArray whole = samples::pngChunk(
            type.constData(), QByteArray(chunk + 8, static_cast<qsizetype>(length)));
        std::copy_n(whole.cend() - 4, 4, data + at + 8 + length);
        at += kFrame + length;
    }
}

} // namespace
} // namespace brimlet

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    constexpr unsigned kLeftWrong = 8; // one input in so many keeps its wrong checksums
    const std::size_t mutated = LLVMFuzzerMutate(data, size, maxSize);
    if (mutated > 0 && data[0] == 0x89 && seed % kLeftWrong != 0) {
        brimlet::mendChecksums(data, mutated);
    }
    return mutated;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return brimlet::runCheck(data, size, brimlet::checkImage);
}
