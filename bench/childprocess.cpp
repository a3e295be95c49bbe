#include "bench/childprocess.h"

#include "tests/support/failure.h"

#include <cstring>
#include <fstream>
#include <iterator>

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brimlet {

using namespace std::chrono_literals;

ChildProcess::ChildProcess(const std::vector<std::string>& command,
                           const std::filesystem::path& log, const std::filesystem::path& input) {
    std::vector<std::string> words = command;
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input.c_str(), O_RDWR, 0);
    ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(),
                                       O_WRONLY | O_CREAT | O_APPEND, 0600);
    ::posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const int error =
        ::posix_spawnp(&m_id, arguments.front(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        m_isReaped = true;
        throw Failure(command.front() + " does not start: " + std::strerror(error));
    }
}

bool ChildProcess::isRunning() {
    if (!m_isReaped) {
        m_isReaped = ::waitpid(m_id, nullptr, WNOHANG) != 0;
    }
    return !m_isReaped;
}

void ChildProcess::end() {
    if (!isRunning()) {
        return;
    }
    ::kill(m_id, SIGTERM);
    if (!waitUntil([this] { return !isRunning(); }, 5s)) {
        ::kill(m_id, SIGKILL);
        ::waitpid(m_id, nullptr, 0);
        m_isReaped = true;
    }
}

void pause(std::chrono::milliseconds time) {
    ::poll(nullptr, 0, static_cast<int>(time.count()));
}

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        // Short, as a start is timed with it, and not nothing, so that the waited-for gets on.
        pause(1ms);
    }
    return true;
}

std::string textOf(const std::filesystem::path& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
}

} // namespace brimlet
