#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace brimlet {

/// A program of the benchmark's, ended with this object.
class ChildProcess final {
public:
    /// Starts it, a path or a name to look for; all it prints is added to `log`. It reads from
    /// `input`, which may be a named pipe: its end is never seen.
    ChildProcess(const std::vector<std::string>& command, const std::filesystem::path& log,
                 const std::filesystem::path& input = "/dev/null");
    ~ChildProcess() { end(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t id() const { return m_id; }
    [[nodiscard]] bool isRunning();
    /// Asks it to end and waits; after five seconds it is killed.
    void end();

private:
    pid_t m_id = 0;
    bool m_isReaped = false;
};

/// Lets time pass.
void pause(std::chrono::milliseconds time);

/// Looks again and again until the condition holds; false when the time is up.
[[nodiscard]] bool waitUntil(const std::function<bool()>& condition,
                             std::chrono::milliseconds time);

/// A file's text, empty while there is none.
[[nodiscard]] std::string textOf(const std::filesystem::path& file);

} // namespace brimlet
