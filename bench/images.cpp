// What a picture costs: ordinary ones, the largest, and small files that ask for much. The worst
// possible ones need not be among them.

#include "bench/micro/ordinarypicture.h"
#include "creative/images/imagedecoding.h"
#include "tests/support/memoryuse.h"
#include "tests/support/samplepictures.h"

#include <benchmark/benchmark.h>

namespace brimlet {
namespace {

const QSize kLargest(4096, 4096);

QImage plain(QSize size, QImage::Format format) {
    QImage picture(size, format);
    picture.fill(QColor(200, 100, 50));
    return picture;
}

/// Decodes until the figure is steady; `decoded` is 0 for a picture that was given up.
void decode(benchmark::State& state, const QByteArray& bytes) {
    const qint64 before = memoryInUse();
    const bool hasPeak = forgetPeak();
    bool isDecoded = false;
    for ([[maybe_unused]] const auto pass : state) {
        isDecoded = decodeImage(bytes).has_value();
    }
    state.counters["decoded"] = isDecoded ? 1 : 0;
    state.counters["file KiB"] = static_cast<double>(bytes.size()) / 1024;
    if (hasPeak) {
        state.counters["peak MiB"] = static_cast<double>(memoryPeak() - before) / (1024 * 1024);
    }
}

void add(const char* name, QByteArray (*make)()) {
    benchmark::RegisterBenchmark(name, [make](benchmark::State& state) {
        decode(state, make());
    })->Unit(benchmark::kMillisecond);
}

void addAll() {
    add("ordinary PNG", [] { return samples::png(hills(kOrdinary)); });
    add("ordinary JPEG", [] { return samples::jpeg(hills(kOrdinary)); });
    add("ordinary progressive JPEG", [] { return samples::jpeg(hills(kOrdinary), true); });
    add("ordinary GIF", [] { return samples::gif(samples::quadrants(kOrdinary)); });
    add("ordinary lossy WebP", [] { return samples::webp(hills(kOrdinary), false); });
    add("ordinary lossless WebP", [] { return samples::webp(hills(kOrdinary), true); });

    add("largest plain PNG", [] { return samples::png(plain(kLargest, QImage::Format_ARGB32)); });
    add("largest rough PNG", [] { return samples::png(hills(QSize(3000, 3000))); });
    add("largest interlaced PNG",
        [] { return samples::interlacedPng(plain(kLargest, QImage::Format_ARGB32)); });
    add("largest deep PNG",
        [] { return samples::png(plain(QSize(4096, 2048), QImage::Format_RGBA64)); });
    add("largest JPEG", [] { return samples::jpeg(hills(kLargest)); });
    add("largest progressive JPEG", [] { return samples::jpeg(hills(QSize(4096, 2720)), true); });
    add("JPEG of idle scans", [] { return samples::idleJpeg(24, false); });
    add("JPEG of idle restarts", [] { return samples::idleJpeg(6, false, 1); });
    add("JPEG of idle refinements", [] { return samples::idleJpeg(3, true); });
    add("largest GIF", [] { return samples::plainGif(kLargest); });
    add("GIF without end", [] { return samples::endlessGif(QSize(16, 16), 2'000'000); });
    add("largest lossy WebP",
        [] { return samples::webp(hills(kLargest).convertToFormat(QImage::Format_RGB32), false); });
    add("largest lossless WebP", [] { return samples::webp(hills(QSize(4096, 2730)), true); });
}

} // namespace
} // namespace brimlet

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    brimlet::addAll();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
