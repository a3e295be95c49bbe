#include "bench/peers.h"

#include "tests/support/failure.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string_view>
#include <utility>

#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brimlet {
namespace {

using namespace std::chrono_literals;

struct Peer final {
    std::string key;
    std::string name;
    std::string absence;              ///< Why it may be absent.
    std::vector<std::string> command; ///< With `kSettings` where its settings' path belongs.
    bool polls = false;
    std::string settings{}; ///< Their name, if it has any.
};

constexpr std::string_view kSettings("@SETTINGS@");

bool isInstalled(const std::string& program) {
    if (program.find('/') != std::string::npos) {
        return std::filesystem::exists(program);
    }
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
    const auto start = std::chrono::steady_clock::now();
    const Traffic traffic = stage.traffic();
    Spent spent{.before = readProcessFigures(peerProcesses(stage))};
    pause(time);
    spent.after = readProcessFigures(peerProcesses(stage));
    spent.traffic = stage.traffic() - traffic;
    spent.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return spent;
}

/// Writes a peer's settings with the stage's root in them; where they are.
std::string writeSettings(const Stage& stage, const std::string& name) {
    constexpr std::string_view kRoot("@ROOT@");
    std::string text = textOf(stage.places().peerSettings / name);
    if (text.empty()) {
        throw Failure("there are no settings named " + name);
    }
    for (auto at = text.find(kRoot); at != std::string::npos; at = text.find(kRoot, at)) {
        text.replace(at, kRoot.size(), stage.root());
    }
    const auto file = stage.places().scratch / name;
    std::ofstream(file) << text << std::flush;
    return file.string();
}

std::vector<std::string> commandOf(const Peer& peer, const Stage& stage) {
    std::vector<std::string> command = peer.command;
    if (!peer.settings.empty()) {
        std::replace(command.begin(), command.end(), std::string(kSettings),
                     writeSettings(stage, peer.settings));
    }
    return command;
}

/// One peer from its start to its end.
Row measure(Row row, const Peer& peer, const Stage& stage, int times) {
    constexpr auto kStartIsOver = 6s;
    constexpr auto kTime = 9s;
    constexpr auto kBetweenPolls = 3s;
    if (!isInstalled(peer.command.front())) {
        row.remark = "absent: " + peer.absence;
        return row;
    }
    ::prctl(PR_SET_CHILD_SUBREAPER, 1);
    const auto log = stage.places().scratch / (peer.key + ".log");
    ChildProcess first(commandOf(peer, stage), log);
    pause(kStartIsOver);
    const std::int64_t pollsBefore = stage.traffic().polls;
    for (int i = 0; i < times; ++i) {
        row.runs.push_back(figuresOf(spentBy(stage, kTime)));
    }
    // What has ended counts as a process until somebody waits for it.
    static_cast<void>(first.isRunning());
    const bool isAlive = !peerProcesses(stage).empty();
    endPeer(stage);
    if (!isAlive) {
        throw Failure("ended by itself; it said: " + firstLineOf(log));
    }
    const std::int64_t polls = stage.traffic().polls - pollsBefore;
    if (const std::int64_t due = times * (kTime / kBetweenPolls); peer.polls && polls < due - 1) {
        throw Failure("asked the service " + std::to_string(polls) + " times where " +
                      std::to_string(due) + " were due; it said: " + firstLineOf(log));
    }
    return row;
}

} // namespace

void measurePeers(Results& results, const Stage& stage, int times) {
    const auto package = [](const std::string& name) {
        return "the package " + name + " is not installed";
    };
    const auto tray = [&](const std::string& program, const std::string& from) {
        return Peer{.key = program,
                    .name = program + ", idle",
                    .absence = package(from),
                    .command = {program}};
    };
    const auto bar = [&](const std::string& program, const std::string& from,
                         const std::string& settings) {
        return Peer{.key = program,
                    .name = program + " with a text by curl every 3 s",
                    .absence = package(from),
                    .command = {program, "-c", std::string(kSettings)},
                    .polls = true,
                    .settings = settings};
    };
    Peer scrolling = bar("conky", "conky-std", "conky-scrolling.conf");
    scrolling.key = "conky.scrolling";
    scrolling.name = "conky, a like text scrolling, and curl every 3 s";
    Peer scrollingAlone = bar("conky", "conky-std", "conky-scrolling-alone.conf");
    scrollingAlone.key = "conky.scrollingAlone";
    scrollingAlone.name = "conky, a like text scrolling and nothing else";
    scrollingAlone.polls = false;
    const std::vector<Peer> peers{
        {.key = "libcurl",
         .name = "libcurl alone, polling every 3 s",
         .absence = "bench-curl-floor is not built",
         .command = {(stage.places().programs / "bench-curl-floor").string(),
                     stage.root() + "/api/display"},
         .polls = true},
        bar("polybar", "polybar", "polybar.ini"),
        bar("conky", "conky-std", "conky.conf"),
        bar("tint2", "tint2", "tint2rc"),
        scrolling,
        scrollingAlone,
        tray("qlipper", "qlipper"),
        tray("flameshot", "flameshot"),
        tray("copyq", "copyq"),
        tray("kdeconnect-indicator", "kdeconnect")};
    for (const Peer& peer : peers) {
        results.add(peer.key, peer.name,
                    [&](Row row) { return measure(std::move(row), peer, stage, times); });
    }
}

} // namespace brimlet
