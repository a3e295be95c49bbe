#include "tools/placement/httpserver.h"
#include "tools/placement/options.h"
#include "tools/placement/pictures.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <span>
#include <thread>

#include <pthread.h>
#include <unistd.h>

namespace {

using namespace brimlet::placement;

constexpr int failure = 1;
constexpr int misuse = 2;

int complain(const std::string& message, int code) {
    std::fprintf(stderr, "brimlet-placement: %s\n", message.c_str());
    return code;
}

// Called before any thread starts, so that only the main thread receives the ending signals.
sigset_t blockEndingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

int run(const Options& options) {
    const sigset_t signals = blockEndingSignals();
    std::optional<ScenarioFile> scenarioFile;
    std::optional<Scenario> scenario;
    if (!options.scenarioFile.empty()) {
        scenarioFile.emplace(options.scenarioFile);
        ScenarioFile::Update update = scenarioFile->reload();
        if (!update.scenario) {
            return complain(update.complaint, misuse);
        }
        scenario = std::move(update.scenario);
    }
    RequestLog log;
    if (!options.logFile.empty() && !log.open(options.logFile)) {
        return complain("log " + options.logFile + ": " + std::strerror(errno), failure);
    }
    HttpServer server;
    const int port = server.bind(options.port);
    if (port < 0) {
        return complain("cannot listen on 127.0.0.1:" + std::to_string(options.port) + ": " +
                            std::strerror(errno),
                        failure);
    }
    const std::string root = "http://127.0.0.1:" + std::to_string(port);
    Responder responder(root, drawPictures());
    if (scenario) {
        responder.setScenario(*std::move(scenario));
    }
    RequestHandler handler(std::move(responder), std::move(scenarioFile), std::move(log));
    std::atomic<bool> broken{false};
    std::thread serving([&] {
        if (!server.serve(handler)) {
            broken = true;
            ::kill(::getpid(), SIGTERM);
        }
    });
    std::printf("Brimlet placement service, for trying and testing only\nListening on %s\n",
                root.c_str());
    std::fflush(stdout);
    int received = 0;
    sigwait(&signals, &received);
    server.finish();
    serving.join();
    return broken ? complain("the listening socket failed", failure) : 0;
}

} // namespace

int main(int argc, char** argv) {
    std::string error;
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    const auto options = parseOptions(arguments.subspan(argc > 0 ? 1 : 0), error);
    if (!options) {
        return complain(error + " (--help lists the options)", misuse);
    }
    if (options->help) {
        std::fwrite(helpText().data(), 1, helpText().size(), stdout);
        return 0;
    }
    if (options->version) {
        std::puts("brimlet-placement " BRIMLET_VERSION);
        return 0;
    }
    return run(*options);
}
