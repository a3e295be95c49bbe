#include "platform/linux/unresponsivebuses.h"

#include "platform/linux/glibowners.h"

#include <QByteArray>

#include <chrono>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <thread>

namespace brimlet {
namespace {

/// A working bus answers within some milliseconds, even while the session is starting.
constexpr std::chrono::seconds kTimeout(1);
/// Allowance for the threads of cancelled probes to return; they need far less.
constexpr std::chrono::milliseconds kCancelGrace(200);

/// Connecting to it always fails, since /dev/null is no folder.
constexpr const char* kInvalidAddress = "unix:path=/dev/null/bus";

/// The original values of the variables that were replaced; null for a variable that was not set.
std::map<const char*, QByteArray> originalAddresses;

/// Connects and waits for the reply to the first call. Blocks until then or until cancelled.
[[nodiscard]] bool answers(const std::string& address, GCancellable* cancellable) {
    const GOwnContext context;
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    const GObjectPtr<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
        address.c_str(), flags, nullptr, cancellable, nullptr));
    return bus != nullptr;
}

struct GFree {
    void operator()(gchar* text) const { g_free(text); }
};

/// A probe of one bus, on a thread that ends with the answer or soon after this object.
class BusProbe final {
public:
    explicit BusProbe(GBusType type) {
        const std::unique_ptr<gchar, GFree> address(
            g_dbus_address_get_for_bus_sync(type, nullptr, nullptr));
        const auto result = std::make_shared<std::promise<bool>>();
        m_answer = result->get_future();
        if (!address) {
            result->set_value(false);
            return;
        }
        try {
            std::thread([result, text = std::string(address.get()), cancellable = m_cancellable] {
                result->set_value(answers(text, cancellable.get()));
            }).detach();
        } catch (const std::system_error&) {
            // No thread could be started, so the bus is assumed to work.
            result->set_value(true);
        }
    }
    ~BusProbe() { g_cancellable_cancel(m_cancellable.get()); }
    BusProbe(const BusProbe&) = delete;
    BusProbe& operator=(const BusProbe&) = delete;

    /// Cancels the probe at the deadline and then waits a little for its thread, which may read the
    /// environment that the caller is about to change.
    [[nodiscard]] bool isAnsweredBy(std::chrono::steady_clock::time_point deadline) {
        if (m_answer.wait_until(deadline) == std::future_status::ready) {
            return m_answer.get();
        }
        g_cancellable_cancel(m_cancellable.get());
        m_answer.wait_for(kCancelGrace);
        return false;
    }

private:
    std::shared_ptr<GCancellable> m_cancellable{g_cancellable_new(), GObjectUnref()};
    std::future<bool> m_answer;
};

void disableBus(const char* variable) {
    originalAddresses.emplace(variable, qgetenv(variable));
    qputenv(variable, kInvalidAddress);
}

} // namespace

void disableUnresponsiveBuses() {
    // In parallel, so that two unresponsive buses take no longer than one.
    BusProbe session(G_BUS_TYPE_SESSION);
    BusProbe system(G_BUS_TYPE_SYSTEM);
    const auto deadline = std::chrono::steady_clock::now() + kTimeout;
    const bool hasSession = session.isAnsweredBy(deadline);
    const bool hasSystem = system.isAnsweredBy(deadline);
    if (!hasSession) {
        disableBus("DBUS_SESSION_BUS_ADDRESS");
    }
    if (!hasSystem) {
        disableBus("DBUS_SYSTEM_BUS_ADDRESS");
    }
}

QProcessEnvironment childEnvironment() {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [variable, address] : originalAddresses) {
        const QString name = QString::fromLatin1(variable);
        if (address.isNull()) {
            environment.remove(name);
        } else {
            environment.insert(name, QString::fromLocal8Bit(address));
        }
    }
    return environment;
}

} // namespace brimlet
