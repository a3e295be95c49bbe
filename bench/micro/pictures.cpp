// What a picture costs the process that decodes it: ordinary ones, the largest, and small files
// that take much work.

#include "bench/micro/repeat.h"
#include "picture/picturereading.h"
#include "platform/qt/pictureprocess.h"
#include "platform/starttask.h"
#include "tests/support/samplepictures.h"

#include <QEventLoop>
#include <QRandomGenerator>

#include <string>
#include <utility>

namespace brimlet {
namespace {

constexpr QSize kOrdinary(512, 512);
constexpr QSize kLargest(4096, 4096);

/// Smooth enough to be compressed well, rough enough not to vanish.
QImage hills(QSize size) {
    QRandomGenerator random(5);
    QImage picture(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            picture.setPixel(x, y,
                             qRgba((x >> 4) & 255, (y >> 4) & 255, ((x ^ y) >> 5) & 255,
                                   250 + random.bounded(2)));
        }
    }
    return picture;
}

QImage plain(QSize size, QImage::Format format) {
    QImage picture(size, format);
    picture.fill(QColor(200, 100, 50));
    return picture;
}

constexpr auto ordinaryPng = [] { return samples::png(hills(kOrdinary)); };
constexpr auto ordinaryJpeg = [] { return samples::jpeg(hills(kOrdinary)); };
constexpr auto ordinaryGif = [] { return samples::gif(samples::quadrants(kOrdinary)); };
constexpr auto ordinaryWebP = [] { return samples::webp(hills(kOrdinary), false); };

struct Sample final {
    const char* name;
    QByteArray (*make)();
};

const Sample kSamples[] = {
    {"ordinary PNG", ordinaryPng},
    {"ordinary JPEG", ordinaryJpeg},
    {"ordinary progressive JPEG", [] { return samples::jpeg(hills(kOrdinary), true); }},
    {"ordinary GIF", ordinaryGif},
    {"ordinary lossy WebP", ordinaryWebP},
    {"ordinary lossless WebP", [] { return samples::webp(hills(kOrdinary), true); }},
    {"largest plain PNG", [] { return samples::png(plain(kLargest, QImage::Format_ARGB32)); }},
    {"largest rough PNG", [] { return samples::png(hills(QSize(3000, 3000))); }},
    {"largest interlaced PNG",
     [] { return samples::interlacedPng(plain(kLargest, QImage::Format_ARGB32)); }},
    {"largest deep PNG",
     [] { return samples::png(plain(QSize(4096, 2048), QImage::Format_RGBA64)); }},
    {"largest JPEG", [] { return samples::jpeg(hills(kLargest)); }},
    {"largest progressive JPEG", [] { return samples::jpeg(hills(QSize(4096, 2720)), true); }},
    {"JPEG of idle scans", [] { return samples::idleJpeg(24, false); }},
    {"JPEG of idle restarts", [] { return samples::idleJpeg(6, false, 1); }},
    {"JPEG of idle refinements", [] { return samples::idleJpeg(3, true); }},
    {"largest GIF", [] { return samples::plainGif(kLargest); }},
    {"GIF without end", [] { return samples::endlessGif(QSize(16, 16), 2'000'000); }},
    {"largest lossy WebP",
     [] { return samples::webp(hills(kLargest).convertToFormat(QImage::Format_RGB32), false); }},
    {"largest lossless WebP", [] { return samples::webp(hills(QSize(4096, 2730)), true); }},
};

void decode(benchmark::State& state, const Sample& sample) {
    const QByteArray bytes = sample.make();
    bool isDecoded = false;
    repeat(state, [&] { isDecoded = readPicture(bytes).has_value(); });
    state.counters["decoded"] = isDecoded ? 1 : 0;
    if (!isDecoded && QByteArrayView(sample.name).startsWith("ordinary")) {
        state.SkipWithError("the picture was given up");
    }
}

QCoro::Task<> ask(PictureDecoder& decoder, QByteArray bytes, bool& isDecoded, QEventLoop& wait) {
    isDecoded = (co_await decoder.decode(std::move(bytes))).has_value();
    wait.quit();
}

/// From bytes to pixels as the program has it; the CPU time is the program's own.
void decodeInProcess(benchmark::State& state, const Sample& sample) {
    const QByteArray bytes = sample.make();
    PictureProcess process(pictureProgram());
    bool isDecoded = false;
    repeat(state, [&] {
        QEventLoop wait;
        startTask(ask(process, bytes, isDecoded, wait));
        wait.exec();
    });
    if (!isDecoded && QByteArrayView(sample.name).startsWith("ordinary")) {
        state.SkipWithError("the picture was given up");
    }
}

const bool kAreRegistered = [] {
    preparePictureReading();
    for (const Sample& sample : kSamples) {
        if (QByteArrayView(sample.name) != "GIF without end") {
            benchmark::RegisterBenchmark(sample.name, decode, sample)
                ->Unit(benchmark::kMillisecond);
        }
        benchmark::RegisterBenchmark((std::string(sample.name) + ", by the process").c_str(),
                                     decodeInProcess, sample)
            ->Unit(benchmark::kMillisecond)
            ->UseRealTime();
    }
    return true;
}();

} // namespace
} // namespace brimlet
