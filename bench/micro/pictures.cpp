// What an ordinary picture costs: the gate alone, which every body passes before a decoder sees it,
// and decoding with the gate before it.

#include "bench/micro/countallocations.h"
#include "bench/micro/ordinarypicture.h"
#include "creative/images/imagedecoding.h"
#include "creative/images/imagegate.h"
#include "tests/support/samplepictures.h"

namespace brimlet {
namespace {

QByteArray ordinary(ImageFormat format) {
    switch (format) {
    case ImageFormat::Png:
        return samples::png(hills(kOrdinary));
    case ImageFormat::Jpeg:
        return samples::jpeg(hills(kOrdinary));
    case ImageFormat::Gif:
        return samples::gif(samples::quadrants(kOrdinary));
    case ImageFormat::WebP:
        return samples::webp(hills(kOrdinary), false);
    }
    return {};
}

void gate(benchmark::State& state, ImageFormat format) {
    const QByteArray bytes = ordinary(format);
    const CountAllocations count(state);
    bool isLetThrough = false;
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        isLetThrough = inspectImage(bytes).has_value();
    }
    state.counters["file KiB"] = static_cast<double>(bytes.size()) / 1024;
    if (!isLetThrough) {
        state.SkipWithError("the picture was refused");
    }
}
BENCHMARK_CAPTURE(gate, png, ImageFormat::Png);
BENCHMARK_CAPTURE(gate, jpeg, ImageFormat::Jpeg);
BENCHMARK_CAPTURE(gate, gif, ImageFormat::Gif);
BENCHMARK_CAPTURE(gate, webp, ImageFormat::WebP);

void decode(benchmark::State& state, ImageFormat format) {
    const QByteArray bytes = ordinary(format);
    const CountAllocations count(state);
    bool isDecoded = false;
    for ([[maybe_unused]] auto _ : state) { // NOLINT(clang-analyzer-deadcode.DeadStores)
        isDecoded = decodeImage(bytes).has_value();
    }
    if (!isDecoded) {
        state.SkipWithError("the picture was given up");
    }
}
BENCHMARK_CAPTURE(decode, png, ImageFormat::Png)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(decode, jpeg, ImageFormat::Jpeg)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(decode, gif, ImageFormat::Gif)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(decode, webp, ImageFormat::WebP)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace brimlet
