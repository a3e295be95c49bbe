#pragma once

#include "host/assignment.h"
#include "host/replyreader.h"
#include "platform/bundle.h"
#include "platform/clock.h"
#include "platform/httpclient.h"
#include "platform/screens.h"
#include "platform/secretstore.h"
#include "platform/workspace.h"

#include <QObject>

#include <memory>
#include <optional>
#include <utility>

namespace brimlet {

/// What the store needs of the system. The ports outlive the main loop; an HTTP client that goes
/// ends every request first.
struct HostPorts final {
    Screens& screens;
    Workspace& workspace;
    SecretStore& secrets;
    HttpClient& http;
    Bundle& bundle;
    Clock& clock;
};

/// The one observable state object of the host: token, pause, the week's assignment, status line,
/// notch and screen state. It drives the periodic requests and answers whether ads may show.
/// Main thread only. Its timers hold it, so a store whose timers run is never destroyed.
class HostStore final : public QObject, public std::enable_shared_from_this<HostStore> {
    Q_OBJECT

public:
    /// Reads the token and the screens; sends nothing.
    [[nodiscard]] static std::shared_ptr<HostStore> create(const HostPorts& ports);

    /// Names the ports of the shared store. Called once, before the first use of `shared()`.
    static void setSharedPorts(const HostPorts& ports);
    /// The process's store, created on first use and kept until the process ends.
    [[nodiscard]] static const std::shared_ptr<HostStore>& shared();

    ~HostStore() override = default;

    /// Registers the observers of screen sleep and wake. Called once, by the launch.
    void watchScreens();
    /// (Re)creates both timers and starts the first display refresh and heartbeat.
    void startTimers();

    /// Takes the token as typed, keeps it trimmed in memory and in the secret store (an empty one
    /// is removed there), and tries it at once.
    void saveToken(const QString& raw);
    /// Signs the host agreement.
    [[nodiscard]] QCoro::Task<> agree();
    /// Pauses ads until 24 hours of wall-clock time from now.
    void pause24h();

    /// Asks the service and applies its reply. `path` begins with a slash and follows the service
    /// root as it is.
    [[nodiscard]] QCoro::Task<> ping(QString path, QByteArray method);
    /// Fetches the public placement, without the token.
    [[nodiscard]] QCoro::Task<> refreshDisplay();
    /// Asks for the host's own figures, or for the public placement while there is no token.
    [[nodiscard]] QCoro::Task<> refreshEstimate();

    /// Reads one creative object of a reply; never fails.
    [[nodiscard]] static SlotCreative parseCreative(const Json& object);
    /// The service root: the info dictionary's BrimletAPIURL as it stands, else the default. Read
    /// anew each time.
    [[nodiscard]] static QString apiRoot(const Bundle& bundle);

    [[nodiscard]] const QString& token() const { return m_token; }
    [[nodiscard]] std::optional<Clock::TimePoint> pausedUntil() const { return m_pausedUntil; }
    [[nodiscard]] const Assignment& assignment() const { return m_assignment; }
    [[nodiscard]] const QString& statusLine() const { return m_statusLine; }
    /// Fixed at creation; a later change of screens does not change it.
    [[nodiscard]] bool hasNotch() const { return m_hasNotch; }
    [[nodiscard]] bool screenAsleep() const { return m_screenAsleep; }

    [[nodiscard]] bool isPaused() const;
    [[nodiscard]] bool adsVisible() const;

    /// Set by the launch, so that the runtime starts once.
    bool runtimeStarted = false;

Q_SIGNALS:
    /// A published field is about to change; it still has its old value.
    void objectWillChange();
    /// The overlay should be rendered from the store's present state, before this returns.
    void overlayNeedsRender();

private:
    explicit HostStore(const HostPorts& ports);

    template <typename Field, typename Value>
    void publish(Field& field, Value&& value) {
        Q_EMIT objectWillChange();
        field = std::forward<Value>(value);
    }

    [[nodiscard]] QCoro::Task<> heartbeat();
    [[nodiscard]] QCoro::Task<> refreshDisplayThenHeartbeat();
    [[nodiscard]] QCoro::Task<> screensChanged(bool asleep);
    [[nodiscard]] HttpRequest authorisedRequest(const Url& url, const QString& path,
                                                const QByteArray& method) const;
    void transferFailed(const QString& path);
    void apply(const ReplyFields& reply);
    void applyDisplay(const ReplyFields& reply);
    [[nodiscard]] bool inApplications() const;

    [[nodiscard]] std::optional<QString> readToken() const;
    void writeToken(const QString& token);

    HostPorts m_ports;
    QString m_token;
    std::optional<Clock::TimePoint> m_pausedUntil;
    Assignment m_assignment;
    QString m_statusLine;
    bool m_hasNotch = false;
    bool m_screenAsleep = false;
    ReplyReader m_reader;
    std::unique_ptr<RepeatingTimer> m_heartbeatTimer;
    std::unique_ptr<RepeatingTimer> m_estimateTimer;
    std::optional<ObserverToken> m_sleepObserver;
    std::optional<ObserverToken> m_wakeObserver;
};

} // namespace brimlet
