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

/// What the store needs from the system. Not owned; all must outlive the main loop. Destroy the
/// HTTP client before the others: its destructor ends pending requests, and the store then still
/// uses the other ports.
struct HostPorts final {
    Screens& screens;
    Workspace& workspace;
    SecretStore& secrets;
    HttpClient& http;
    Bundle& bundle;
    Clock& clock;
};

/// The host's whole state, observable: token, pause, the week's assignment, status line, notch and
/// screen state. It sends the periodic requests and decides whether ads may show. Main thread only.
/// Running timers own a reference to it, so after `startTimers()` it is never destroyed.
///
/// All requests: without a notch nothing is sent and the status line says so. A task completes when
/// its request has ended and never throws; a failure leaves the assignment unchanged and appears
/// only in the status line. Requests may overlap; the reply that arrives last counts.
class HostStore final : public QObject, public std::enable_shared_from_this<HostStore> {
    Q_OBJECT

public:
    /// Reads the screens, and the token from the secret store, which may block for two seconds.
    /// Sends no request. A token that the secret store delivers later is used unless one was saved
    /// meanwhile; once the timers run it is then tried as a saved one is.
    [[nodiscard]] static std::shared_ptr<HostStore> create(const HostPorts& ports);

    /// The process's store, created on first use with `SharedPorts` and kept until the process
    /// ends.
    [[nodiscard]] static const std::shared_ptr<HostStore>& shared();

    ~HostStore() override = default;

    /// From now on, each time the screens sleep or wake, updates `screenAsleep`, emits
    /// `overlayNeedsRender()` and sends a heartbeat. Call once.
    void watchScreens();
    /// Sends a display request and then a heartbeat, and starts the timers: a heartbeat every 900
    /// seconds, `refreshEstimate()` every 3. A second call restarts both timers.
    void startTimers();

    /// Trims the token, keeps it in memory, and replaces the one in the secret store, even without
    /// a notch. A token that is empty or not valid UTF-16 only removes the stored one. A failure of
    /// the secret store is ignored. Then sends a display request and a heartbeat with the new
    /// token.
    void saveToken(const QString& raw);
    /// Signs the host agreement: `ping()` with POST /api/host/agree.
    [[nodiscard]] QCoro::Task<> agree();
    /// Pauses ads for 24 hours of wall-clock time, even without a notch, and sends a heartbeat. A
    /// pause is not stored and cannot be ended early; another call extends it.
    void pause24h();

    /// Goes on with a pause that was asked for before this process started anew by itself. Call it
    /// before the start.
    void continuePause(Clock::TimePoint end) { publish(m_pausedUntil, end); }

    /// Sends a request with the token and applies the reply; without a token, or if the address is
    /// malformed, nothing happens. `path` begins with a slash and is appended to the service root
    /// unchanged. A POST has a JSON body, `heartbeatBody()` when the path ends with "/heartbeat"
    /// and "{}" otherwise; a GET may be sent conditionally (`HttpRequest::mayRevalidate`). Only a
    /// 200 with a JSON object is applied. Without a reply, or after a 200 that is not JSON, only a
    /// heartbeat changes the status line. After any other reply it says that the token was
    /// rejected.
    [[nodiscard]] QCoro::Task<> ping(QString path, QByteArray method);
    /// GET /api/display, the public placement, without the token. Only a 200 with a JSON object is
    /// applied; otherwise the status line says that loading failed.
    [[nodiscard]] QCoro::Task<> refreshDisplay();
    /// `ping()` with GET /api/host/me, or `refreshDisplay()` while there is no token.
    [[nodiscard]] QCoro::Task<> refreshEstimate();

    /// Reads one creative object of a reply. Fields that are missing or have the wrong type are
    /// empty or absent.
    [[nodiscard]] static SlotCreative parseCreative(const Json& object);
    /// The service's root URL: the value of BrimletAPIURL in `Bundle`'s info dictionary if it is a
    /// string (not checked), else http://127.0.0.1:8791.
    [[nodiscard]] static QString apiRoot(const Bundle& bundle);

    [[nodiscard]] const QString& token() const { return m_token; }
    /// False while the secret store is locked or has not answered: it may then hold a token
    /// although `token()` is empty. Changes together with `token()`.
    [[nodiscard]] bool isTokenKnown() const { return m_isTokenKnown; }
    /// The end of the last pause, which may be past.
    [[nodiscard]] std::optional<Clock::TimePoint> pausedUntil() const { return m_pausedUntil; }
    [[nodiscard]] const Assignment& assignment() const { return m_assignment; }
    [[nodiscard]] const QString& statusLine() const { return m_statusLine; }
    /// Determined at creation; a later change of screens does not change it.
    [[nodiscard]] bool hasNotch() const { return m_hasNotch; }
    [[nodiscard]] bool screenAsleep() const { return m_screenAsleep; }

    /// True during a pause. Reads the clock, so it changes without `objectWillChange()` when the
    /// pause ends or the clock is set.
    [[nodiscard]] bool isPaused() const;
    /// `areAdsVisible()` for the current state. Like `isPaused()`, it may change without a signal.
    /// False until the first reply.
    [[nodiscard]] bool adsVisible() const;

    /// Whether the timers and observers were started. Set by the caller that starts them.
    bool runtimeStarted = false;

Q_SIGNALS:
    /// A field is about to be set, perhaps to an equal value; it still has its old one.
    void objectWillChange();
    /// The overlay should be rendered from the store's current state. Use Qt::DirectConnection, so
    /// that rendering is done when the emit returns.
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
    /// Absent for a malformed address. It is parsed again only when it is another than the last
    /// time.
    [[nodiscard]] std::optional<Url> serviceUrl(const QString& path);
    [[nodiscard]] HttpRequest authorisedRequest(const Url& url, const QString& path,
                                                const QByteArray& method) const;
    void transferFailed(const QString& path);
    void apply(const ReplyFields& reply);
    void applyDisplay(const ReplyFields& reply);
    [[nodiscard]] bool inApplications() const;

    [[nodiscard]] std::optional<QString> readToken();
    void tokenArrived(const SecretResult& result);
    void writeToken(const QString& token);

    HostPorts m_ports;
    bool m_isTokenKnown = false;
    QString m_token;
    std::optional<Clock::TimePoint> m_pausedUntil;
    Assignment m_assignment;
    QString m_statusLine;
    bool m_hasNotch = false;
    bool m_screenAsleep = false;
    std::pair<QString, std::optional<Url>> m_serviceUrl; ///< The last one, by its text.
    ReplyReader m_reader;
    std::unique_ptr<RepeatingTimer> m_heartbeatTimer;
    std::unique_ptr<RepeatingTimer> m_estimateTimer;
    std::optional<ObserverToken> m_sleepObserver;
    std::optional<ObserverToken> m_wakeObserver;
};

} // namespace brimlet
