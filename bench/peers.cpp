#include "bench/peers.h"

#include "bench/failure.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <utility>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brimlet {
namespace {

using namespace std::chrono_literals;

struct Peer final {
    std::string name;
    std::string package;
    std::vector<std::string> command;
    bool polls = false;
};

bool isInstalled(const std::string& program) {
    std::istringstream folders(std::getenv("PATH") != nullptr ? std::getenv("PATH") : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (::access((folder + '/' + program).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

/// The benchmark's descendants but itself and the service: the peer, also where it went on in the
/// background, since orphans come to the benchmark.
std::vector<pid_t> peerProcesses(const Stage& stage) {
    std::vector<pid_t> processes = processTree(::getpid());
    std::erase(processes, ::getpid());
    std::erase(processes, stage.service());
    return processes;
}

void reapOrphans(const std::vector<pid_t>& processes) {
    for (const pid_t process : processes) {
        ::waitpid(process, nullptr, WNOHANG);
    }
}

void endPeer(const Stage& stage) {
    const auto isGone = [&] {
        const auto processes = peerProcesses(stage);
        reapOrphans(processes);
        return peerProcesses(stage).empty();
    };
    for (const int signal : {SIGTERM, SIGKILL}) {
        for (const pid_t process : peerProcesses(stage)) {
            ::kill(process, signal);
        }
        if (waitUntil(isGone, 5s)) {
            return;
        }
    }
    throw Failure("a peer does not end");
}

std::string firstLineOf(const std::filesystem::path& file) {
    std::istringstream text(textOf(file));
    std::string line;
    std::getline(text, line);
    return line.substr(0, 100);
}

/// What a peer's processes spend together, ended ones too.
Spent spentBy(const Stage& stage, std::chrono::seconds time) {
    const auto cpu = [](const ProcessFigures& figures) {
        return figures.cpuMilliseconds + figures.childrenMilliseconds;
    };
    const auto start = std::chrono::steady_clock::now();
    const ProcessFigures before = readProcessFigures(peerProcesses(stage));
    pause(time);
    const ProcessFigures after = readProcessFigures(peerProcesses(stage));
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
    return {.seconds = seconds.count(),
            .cpuMilliseconds = cpu(after) - cpu(before),
            .wakeUps = static_cast<double>(after.wakeUps - before.wakeUps)};
}

/// One peer from its start to its end.
Row measure(const Peer& peer, const Stage& stage, const Places& places, std::chrono::seconds time) {
    constexpr auto kStartIsOver = 6s;
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    Row row{.name = peer.name};
    const std::filesystem::path program(peer.command.front());
    const auto log = places.scratch / (program.filename().string() + ".log");
    ChildProcess first(peer.command, log);
    pause(kStartIsOver);
    const std::size_t requestsBefore = stage.requests();
    const Spent spent = spentBy(stage, time);
    const bool hasAsked = stage.requests() > requestsBefore;
    // What has ended counts as a process until somebody waits for it.
    static_cast<void>(first.isRunning());
    const auto processes = peerProcesses(stage);
    if (processes.empty()) {
        row.remark = "ended by itself; it said: " + firstLineOf(log);
    } else if (peer.polls && !hasAsked) {
        row.remark = "did not ask the service; it said: " + firstLineOf(log);
    } else {
        row.memory = readProcessFigures(processes);
        row.rates = ratesOf(spent);
    }
    endPeer(stage);
    return row;
}

/// A bar along the lower edge that shows a command's output.
std::string writeBarSettings(const Places& places, const Stage& stage) {
    const auto file = places.scratch / "tint2rc";
    std::ofstream out(file);
    out << "panel_items = E\npanel_position = bottom center horizontal\npanel_size = 100% 24\n"
           "execp = new\nexecp_command = curl -s "
        << stage.root() << "/api/display | head -c 60\nexecp_interval = 3\n";
    return file.string();
}

} // namespace

void measurePeers(const Places& places, const Stage& stage, std::chrono::seconds time) {
    const std::vector<Peer> peers{
        {"tint2 that runs curl every 3 s",
         "tint2",
         {"tint2", "-c", writeBarSettings(places, stage)},
         true},
        {"qlipper, idle", "qlipper", {"qlipper"}},
        {"flameshot, idle", "flameshot", {"flameshot"}},
        {"copyq, idle", "copyq", {"copyq"}},
        {"kdeconnect-indicator without its daemon, idle", "kdeconnect", {"kdeconnect-indicator"}}};
    for (const Peer& peer : peers) {
        if (isInstalled(peer.command.front())) {
            printed(measure(peer, stage, places, time));
        } else {
            printed({.name = peer.name,
                     .remark = "absent: the package " + peer.package + " is not installed"});
        }
    }
}

Row measureCurlFloor(const Places& places, const Stage& stage, std::chrono::seconds time) {
    const std::string program = (places.programs / "bench-curl-floor").string();
    const Row row = measure({.name = "libcurl alone, polling every 3 s",
                             .package = {},
                             .command = {program, stage.root() + "/api/display"},
                             .polls = true},
                            stage, places, time);
    if (!row.rates) {
        throw Failure(program + " " + row.remark);
    }
    return row;
}

} // namespace brimlet
