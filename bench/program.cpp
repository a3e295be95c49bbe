// Runs the simulated program in the present X session in all its ways, and then, one after another,
// what it is compared with: the least program that does the job by hand, an empty window, the same
// program with a naive picture, a bare poll, and what is there of other people's programs. Each is
// measured five times; with --quick once, to see that it works. With --only just those rows whose
// key has the text in it, e.g. "scrolling".
//   bench-program [--quick] [--only TEXT] FOLDER_WITH_PROGRAMS MACHINE_FILE
//   FOLDER_WITH_PEERS_SETTINGS RESULT_FILE
// Not linked with Qt, so that it shares none of its memory with what it measures.

#include "bench/peers.h"
#include "bench/runs.h"
#include "bench/stage.h"
#include "tests/support/failure.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace {

using namespace brimlet;

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

/// Waits until the program says that it is so.
void awaitState(Show& show, const char* state) {
    const auto isSo = [&] {
        const auto said = nlohmann::json::parse(show.tell("state"), nullptr, false);
        return said.is_object() && said.value(state, false);
    };
    if (!waitUntil(isSo, std::chrono::seconds(5))) {
        throw Failure(std::string("the program does not get into the state ") + state);
    }
}

/// The simulated program in every way.
void measureProgram(Results& results, const Desktop& desktop, const Places& places, int times) {
    const Actor brimlet{"brimlet-simulator", Actor::Argument::MachineFile};
    {
        const Stage stage(places, "sample", sampleBrands());
        const Runs runs(desktop, stage, brimlet, times);
        results.setQtVersion(runs.qtVersion());
        results.add("brimlet.start", "Brimlet, start to first capsule",
                    [&](const Row& row) { return runs.starts(row); });
        results.add("brimlet.rest", "Brimlet, at rest between swaps",
                    [&](const Row& row) { return runs.rest(row); });
    }
    {
        const Stage stage(places, "cycles", sampleTaglines());
        results.add(
            "brimlet.cycles", "Brimlet, both taglines in turn with brands",
            [&](const Row& row) { return Runs(desktop, stage, brimlet, times).cycles(row); });
    }
    {
        const Stage stage(places, "scroll", longTaglines(Runs::scrollSeconds(times)));
        results.add("brimlet.scrolling", "Brimlet, both taglines scrolling", [&](const Row& row) {
            return Runs(desktop, stage, brimlet, times).scrolling(row);
        });
    }
    Stage stage(places, "still", stillBrands("Quiet Bicycle"));
    const Runs runs(desktop, stage, brimlet, times);
    results.add("brimlet.change", "Brimlet, reply to pixels",
                [&](const Row& row) { return runs.changes(row); });
    results.add("brimlet.menu", "Brimlet, panel open", [&](const Row& row) {
        return runs.after(row, [](Show& show) {
            show.tell("open");
            awaitState(show, "isMenuOpen");
        });
    });
    results.add("brimlet.paused", "Brimlet, paused", [&](const Row& row) {
        return runs.after(row, [](Show& show) {
            show.tell("pause");
            awaitState(show, "isPaused");
        });
    });
    results.add("brimlet.asleep", "Brimlet, screens asleep", [&](const Row& row) {
        return runs.after(row, [&](Show& show) {
            stage.setScreensAsleep(true);
            awaitState(show, "screenAsleep");
        });
    });
    stage.setScreensAsleep(false);
    results.add("brimlet.down", "Brimlet, nobody listening at the service's address",
                [&](const Row& row) { return runs.after(row, [&](Show&) { stage.goDown(); }); });
}

/// What it is compared with.
void measureOthers(Results& results, const Desktop& desktop, const Places& places, int times) {
    const Actor floor{"bench-floor", Actor::Argument::Root};
    const Actor emptyWindow{"bench-empty-window"};
    // It sends sixteen megabytes of pixels a second.
    const Actor naive{"bench-naive", Actor::Argument::MachineFile, Show::Counting::NoXRequests};
    {
        const Stage stage(places, "floor-sample", sampleBrands());
        const Runs runs(desktop, stage, floor, times);
        results.add(
            "empty.start", "an empty window of Qt's, start until it is seen",
            [&](const Row& row) { return Runs(desktop, stage, emptyWindow, times).starts(row); });
        results.add("floor.start", "floor, start to first capsule",
                    [&](const Row& row) { return runs.starts(row); });
        results.add("floor.rest", "floor, at rest between swaps",
                    [&](const Row& row) { return runs.rest(row); });
    }
    {
        const Stage stage(places, "floor-cycles", sampleTaglines());
        results.add("floor.cycles", "floor, both taglines in turn with brands",
                    [&](const Row& row) { return Runs(desktop, stage, floor, times).cycles(row); });
    }
    {
        const Stage stage(places, "floor-scroll", longTaglines(Runs::scrollSeconds(times)));
        results.add("floor.scrolling", "floor, both taglines scrolling", [&](const Row& row) {
            return Runs(desktop, stage, floor, times).scrolling(row);
        });
        results.add("naive.scrolling", "naive, both taglines scrolling", [&](const Row& row) {
            return Runs(desktop, stage, naive, times).scrolling(row);
        });
    }
    {
        const Stage stage(places, "floor-still", stillBrands("Quiet Bicycle"));
        results.add("floor.change", "floor, reply to pixels", [&](const Row& row) {
            return Runs(desktop, stage, floor, times).changes(row);
        });
    }
    const Stage stage(places, "peers", sampleBrands());
    measurePeers(results, stage, times);
}

} // namespace

int main(int argc, char* argv[]) {
    std::vector<std::string> given(argv + 1, argv + argc);
    const auto take = [&given] {
        std::string first = given.front();
        given.erase(given.begin());
        return first;
    };
    constexpr int kTimes = 5;
    int times = kTimes;
    std::string only;
    if (!given.empty() && given.front() == "--quick") {
        take();
        times = 1;
    }
    if (given.size() > 1 && given.front() == "--only") {
        take();
        only = take();
    }
    if (given.size() != 4) {
        std::fputs("usage: bench-program [--quick] [--only TEXT] FOLDER_WITH_PROGRAMS MACHINE_FILE "
                   "FOLDER_WITH_PEERS_SETTINGS RESULT_FILE\n",
                   stderr);
        return 2;
    }
    try {
        const Scratch scratch;
        const Places places{given[0], given[1], given[2], scratch.path()};
        const Desktop desktop;
        Results results(given[3], only);
        measureProgram(results, desktop, places, times);
        measureOthers(results, desktop, places, times);
        if (results.failures() > 0) {
            std::fprintf(stderr, "bench-program: %d could not be measured\n", results.failures());
            return 1;
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench-program: %s\n", failure.what());
        return 1;
    }
    return 0;
}
