#pragma once

#include "tests/soak/report.h"
#include "tests/support/processes.h"

namespace brimlet {

/// What a program has in use.
struct ProgramUse final {
    qint64 memory = 0; ///< Resident bytes.
    qint64 own = 0;    ///< Those among them that are no parts of files, such as code.
    qint64 threads = 0;
    qint64 sockets = 0; ///< Kept connections among them.
    qint64 others = 0;  ///< Descriptors that are no sockets.
};

/// Throws a `Failure` when the process is gone.
[[nodiscard]] ProgramUse useOf(qint64 process);

/// What a program used once it had warmed up, and the most it used at any time since.
class UseWatch final {
public:
    explicit UseWatch(qint64 process)
        : m_process(process) {}

    /// Takes a sample; the others are judged by the first one.
    void sample();
    [[nodiscard]] bool hasBegun() const { return m_isWarm; }
    /// The last sample in words.
    [[nodiscard]] QString words() const;
    /// Judges the last sample. A short run is given more memory, since it had no time to warm up.
    void judge(Report& report, bool isShort) const;

private:
    qint64 m_process;
    bool m_isWarm = false;
    ProgramUse m_warm;
    ProgramUse m_last;
    ProgramUse m_most;
};

/// Judges what it printed to standard error and says at last.
void judgeWords(Report& report, SimulatorProcess& program, const QString& status);

} // namespace brimlet
