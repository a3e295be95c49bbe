#include "platform/linux/silentbuses.h"

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

/// A bus that lives answers within some milliseconds, also while a session starts.
constexpr std::chrono::seconds kPatience(1);
/// What a cancelled call takes to return, many times over.
constexpr std::chrono::milliseconds kFarewell(200);

/// Nothing is ever found there.
constexpr const char* kNowhere = "unix:path=/dev/null/bus";

/// What the environment said of the buses that were left out, by variable; null where it said
/// nothing.
std::map<const char*, QByteArray> addressesBefore;

/// The handshake and the first question that a bus answers; blocks.
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

/// A bus that is being asked, on a thread that ends with the answer or soon after this.
class Question final {
public:
    explicit Question(GBusType type) {
        const std::unique_ptr<gchar, GFree> address(
            g_dbus_address_get_for_bus_sync(type, nullptr, nullptr));
        const auto told = std::make_shared<std::promise<bool>>();
        m_answer = told->get_future();
        if (!address) {
            told->set_value(false);
            return;
        }
        try {
            std::thread([told, text = std::string(address.get()), cancellable = m_cancellable] {
                told->set_value(answers(text, cancellable.get()));
            }).detach();
        } catch (const std::system_error&) {
            // No thread to be had: nothing is known of the bus.
            told->set_value(true);
        }
    }
    ~Question() { g_cancellable_cancel(m_cancellable.get()); }
    Question(const Question&) = delete;
    Question& operator=(const Question&) = delete;

    /// Without an answer it is asked no longer, and as good as over when this returns: its thread
    /// may read the environment, which is about to change.
    [[nodiscard]] bool isAnsweredBy(std::chrono::steady_clock::time_point deadline) {
        if (m_answer.wait_until(deadline) == std::future_status::ready) {
            return m_answer.get();
        }
        g_cancellable_cancel(m_cancellable.get());
        m_answer.wait_for(kFarewell);
        return false;
    }

private:
    std::shared_ptr<GCancellable> m_cancellable{g_cancellable_new(), GObjectUnref()};
    std::future<bool> m_answer;
};

void leaveOut(const char* variable) {
    addressesBefore.emplace(variable, qgetenv(variable));
    qputenv(variable, kNowhere);
}

} // namespace

void leaveOutSilentBuses() {
    // Both at once, so that two that are silent take no longer than one.
    Question session(G_BUS_TYPE_SESSION);
    Question system(G_BUS_TYPE_SYSTEM);
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    const bool hasSession = session.isAnsweredBy(deadline);
    const bool hasSystem = system.isAnsweredBy(deadline);
    if (!hasSession) {
        leaveOut("DBUS_SESSION_BUS_ADDRESS");
    }
    if (!hasSystem) {
        leaveOut("DBUS_SYSTEM_BUS_ADDRESS");
    }
}

QProcessEnvironment environmentForOthers() {
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const auto& [variable, address] : addressesBefore) {
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
