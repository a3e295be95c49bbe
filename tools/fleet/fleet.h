#pragma once

#include "host/hoststore.h"
#include "platform/curl/curlhttpclient.h"
#include "platform/qt/qtclock.h"
#include "tools/fleet/countingclient.h"
#include "tools/fleet/options.h"
#include "tools/fleet/ports.h"
#include "tools/fleet/processuse.h"
#include "tools/fleet/report.h"

#include <QElapsedTimer>

#include <memory>
#include <vector>

namespace brimlet::fleet {

/// Many hosts, each with its own store, token and HTTP client, on one clock. Never destroyed, since
/// running stores keep themselves alive.
class Fleet final {
public:
    explicit Fleet(Options options);
    Fleet(const Fleet&) = delete;
    Fleet& operator=(const Fleet&) = delete;

    /// Starts the hosts one after another and finishes when the measurement ends. Called once.
    [[nodiscard]] QCoro::Task<> run();

    /// The measurements so far.
    [[nodiscard]] Figures figures() const;
    /// Whether any request succeeded since the start.
    [[nodiscard]] bool hasSucceeded() const;

private:
    struct Host final {
        Host(Fleet& fleet, QByteArray token);

        OneToken secrets;
        std::unique_ptr<CurlHttpClient> http;
        CountingClient counted;
        std::shared_ptr<HostStore> store;
    };
    /// The counters at one moment.
    struct Mark final {
        Tally polls;
        Tally heartbeats;
        CurlTraffic traffic;
        double cpu = 0; ///< Milliseconds.
    };

    [[nodiscard]] QCoro::Task<> warmUp();
    [[nodiscard]] QCoro::Task<> startAll();
    [[nodiscard]] QCoro::Task<> awaitFirstReplies();
    [[nodiscard]] std::unique_ptr<CurlHttpClient> nextClient() const;
    [[nodiscard]] Mark mark() const;

    Options m_options;
    NotchedScreens m_screens;
    SleeplessWorkspace m_workspace;
    ServiceBundle m_bundle;
    QtClock m_clock;
    Statistics m_statistics;
    std::vector<std::unique_ptr<Host>> m_hosts;
    MemoryUse m_before;
    Mark m_begin;
    QElapsedTimer m_measured; ///< Not valid before all have started.
};

} // namespace brimlet::fleet
