#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QTemporaryDir>

namespace brimlet {

/// Environment variables to change for a program, by name; a null value removes the variable.
using EnvironmentChanges = QMap<QString, QString>;

/// A process's use of resources, from the kernel; all -1 when there is no such process.
struct ProcessMeasures final {
    qint64 residentBytes = -1;
    qint64 descriptors = -1;
    qint64 threads = -1;
};
[[nodiscard]] ProcessMeasures measuresOf(qint64 process);

/// A process of the development placement service, on a free port.
class PlacementProcess final {
public:
    PlacementProcess();
    ~PlacementProcess();
    PlacementProcess(const PlacementProcess&) = delete;
    PlacementProcess& operator=(const PlacementProcess&) = delete;

    /// Empty when it did not start.
    [[nodiscard]] const QString& root() const { return m_root; }
    /// Takes effect with the next request.
    void setScenario(const QJsonObject& scenario) const;
    /// The requests received so far, one object each.
    [[nodiscard]] QJsonArray requests() const;
    /// The same as "METHOD path".
    [[nodiscard]] QStringList requestLines() const;

    [[nodiscard]] qint64 pid() const { return m_process.processId(); }

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QString m_root;
};

/// The simulated program, driven through its console.
class SimulatorProcess final {
public:
    /// On the 14-inch machine, with these keys of the machine file replaced.
    explicit SimulatorProcess(const QJsonObject& machine,
                              const EnvironmentChanges& environment = {});
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    /// Edits the machine file: these keys replaced, the others as they are.
    void edit(const QJsonObject& machine);

    /// The program's answer to one console command; empty when it does not answer.
    [[nodiscard]] QJsonObject ask(const QByteArray& command);
    [[nodiscard]] QJsonObject state() { return ask("state"); }
    [[nodiscard]] QJsonObject panel() { return state().value(QStringLiteral("panel")).toObject(); }
    [[nodiscard]] bool isPanelShown();
    [[nodiscard]] QString statusLine();

    [[nodiscard]] qint64 pid() const { return m_process.processId(); }
    [[nodiscard]] ProcessMeasures measures() const { return measuresOf(pid()); }
    /// Stops and continues the process.
    void freeze() const;
    void thaw() const;
    /// Ends the process with SIGKILL.
    void kill();
    /// Starts the program once more on the same machine; returns the second one's exit code.
    [[nodiscard]] int startAgain() const;
    /// Waits for the program's end; -1 when it crashed or did not end in time.
    [[nodiscard]] int exitCode();
    /// Sends the signal and returns the exit code, or -1 when it crashed or did not end in time.
    [[nodiscard]] int endBySignal(int signal);
    /// Its output to standard error so far.
    [[nodiscard]] QByteArray complaints();
    /// All its answers so far.
    [[nodiscard]] const QByteArray& answers() const { return m_answers; }

private:
    QTemporaryDir m_folder;
    QJsonObject m_machine;
    QProcess m_process;
    QByteArray m_complaints;
    QByteArray m_answers;
};

} // namespace brimlet
