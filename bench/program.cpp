// Runs the simulated program in the present X session, and beside it, one after another: the same
// program with a naive picture, a bare poll, and what is there of other people's programs.
//   bench-program FOLDER_WITH_PROGRAMS MACHINE_FILE [SECONDS]
// Not linked with Qt, so that it shares none of its memory with what it measures.

#include "bench/failure.h"
#include "bench/peers.h"
#include "bench/runs.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include <nlohmann/json.hpp>

namespace {

using namespace brimlet;
using std::chrono::seconds;

/// A folder that goes with the object.
class Scratch final {
public:
    Scratch() {
        std::string name =
            (std::filesystem::temp_directory_path() / "brimlet-bench.XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw Failure("no folder can be made for what the programs print");
        }
        m_path = name;
    }
    ~Scratch() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

/// How long each part is watched, from the time the caller gives.
struct Times final {
    static constexpr int kSlices = 5;

    explicit Times(int given)
        : whole(given)
        , slice(std::clamp(given / kSlices / 3 * 3, 3, 6))
        , other(std::clamp(given / 2 / 3 * 3, 9, 24)) {}

    seconds whole;
    seconds slice; ///< Of scrolling; with all slices at most 30 s.
    seconds other; ///< For programs that do the same all the time.
};

/// What the program takes and what the naive one does; false when no scrolling was seen.
bool measure(const Places& places, const Times& times) {
    const Desktop desktop;
    const Runs program(desktop, places, "brimlet-simulator", "Brimlet");
    const Runs naive(desktop, places, "bench-naive", "naive");

    std::optional<Stage> stage(std::in_place, places, "sample");
    const auto starts = program.starts(*stage, 5);
    std::printf("start to first capsule, median of %zu: %.0f ms (%.0f to %.0f)\n\n", starts.size(),
                median(starts), starts.front(), starts.back());
    printHead();
    const Row rest = printed(program.rest(*stage, 3));
    const std::size_t pictures = stage->picturesServed();
    const Row cycles = printed(program.cycles(*stage, times.whole));
    const Row naiveCycles = printed(naive.cycles(*stage, times.whole));

    const auto scenario = longTaglines(scrollSeconds(times.slice, Times::kSlices));
    stage.reset();
    stage.emplace(places, "scroll", &scenario);
    const Row scrolling = printed(program.scrolling(*stage, times.slice, Times::kSlices));
    const Row naiveScrolling = printed(naive.scrolling(*stage, times.slice, Times::kSlices));

    stage.reset();
    stage.emplace(places, "peers");
    printed(measureCurlFloor(places, *stage, times.other));
    measurePeers(places, *stage, times.other);

    std::printf("\n%-46s %zu of 2\n", "pictures that were loaded", pictures);
    std::printf("%-46s %.0f (target 0)\n", "paints a minute at rest",
                rest.rates->paints.value_or(0));
    printCpuRatio("CPU while scrolling, Brimlet / naive", scrolling, naiveScrolling,
                  " (target at most 0.15)");
    printCpuRatio("CPU over sample brands, Brimlet / naive", cycles, naiveCycles);
    std::fflush(stdout);
    return scrolling.rates.has_value();
}

} // namespace

int main(int argc, char* argv[]) {
    constexpr int kLeast = 20;
    const int given = argc == 4 ? std::atoi(argv[3]) : 60;
    if (argc < 3 || argc > 4 || given < kLeast) {
        std::fprintf(
            stderr,
            "usage: bench-program FOLDER_WITH_PROGRAMS MACHINE_FILE [SECONDS, %d or more]\n",
            kLeast);
        return 2;
    }
    try {
        const Scratch scratch;
        if (!measure({argv[1], argv[2], scratch.path()}, Times(given))) {
            std::fputs("bench-program: no scrolling was seen, so there is no ratio\n", stderr);
            return 1;
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench-program: %s\n", failure.what());
        return 1;
    }
    return 0;
}
