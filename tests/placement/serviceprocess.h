#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace brimlet::placementtest {

/// A brimlet-placement process on a free port, with its own scenario and log.
class ServiceProcess final {
public:
    /// Starts with this scenario; none when empty.
    explicit ServiceProcess(const QByteArray& scenario = {});
    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    /// 0 when it did not start; its complaint is in `errors()`.
    [[nodiscard]] quint16 port() const { return m_port; }
    [[nodiscard]] QByteArray output() const { return m_output; }
    [[nodiscard]] QByteArray errors();
    [[nodiscard]] QByteArray log() const;
    [[nodiscard]] QProcess& process() { return m_process; }

    /// Replaces the scenario, in place.
    [[nodiscard]] bool edit(const QByteArray& scenario);
    /// Sends the signal. Returns the milliseconds until the program has ended, -1 when it does not.
    [[nodiscard]] qint64 endWith(int signal);

    /// Runs the program with these arguments until it ends.
    struct Outcome {
        int exitCode = -1;
        QByteArray output;
        QByteArray errors;
    };
    [[nodiscard]] static Outcome run(const QStringList& arguments);

private:
    QTemporaryDir m_folder;
    QProcess m_process;
    QByteArray m_output;
    QByteArray m_errors;
    quint16 m_port = 0;
};

} // namespace brimlet::placementtest
