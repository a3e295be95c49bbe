#pragma once

#include "host/hoststore.h"
#include "tests/support/fakes.h"

namespace brimlet {

/// A reply of the usual kind and size.
inline const QByteArray kReply = R"({
  "creatives": [
    {"slotId": "left", "brandName": "Harbour Coffee", "copy": "Roasted on the quay since 1921",
     "assetUrl": "https://images.example/harbour.png", "brandUrl": "https://harbour.example/"},
    {"slotId": "right", "brandName": "Nordlicht", "copy": "Lamps that follow the sun, winter too",
     "assetUrl": "https://images.example/nordlicht.png", "brandUrl": "https://nordlicht.example/"}],
  "weekStatus": "live", "estimatedCents": 1234, "pendingStipendCents": 560, "liveHostCount": 42,
  "liveDaysThisWeek": 3, "liveBucketsToday": 2, "liveBucketsNeeded": 4, "forceHide": false,
  "agreed": true, "fromApplications": true,
  "agreementText": "The host shows the week's brands beside the notch. Pay is an estimate."})";

/// Answers every request at once, with the same reply or each time with another one.
class InstantHttpClient final : public HttpClient {
public:
    QCoro::Task<HttpResult> send(HttpRequest /*request*/) override {
        m_isOdd = isChanging && !m_isOdd;
        HttpReply reply{200, m_isOdd ? m_otherReply : kReply};
        co_return reply;
    }

    bool isChanging = false;

private:
    bool m_isOdd = false;
    const QByteArray m_otherReply = QByteArray(kReply).replace("quay", "pier");
};

class StandingClock final : public Clock {
public:
    [[nodiscard]] TimePoint now() const override { return {}; }
    [[nodiscard]] std::chrono::nanoseconds uptime() const override { return {}; }
    [[nodiscard]] std::unique_ptr<RepeatingTimer> repeat(std::chrono::milliseconds /*interval*/,
                                                         std::function<void()> /*tick*/) override {
        return nullptr;
    }
    [[nodiscard]] QCoro::Task<> sleep(std::chrono::nanoseconds /*duration*/,
                                      std::stop_token /*stop*/) override {
        co_return;
    }
};

/// A store with a token on the 14-inch machine, whose every poll brings the same reply.
struct SampleStore final {
    SampleStore() {
        secrets.add(bundle.identifier(), QStringLiteral("host-token"), "token");
        Screen screen;
        screen.number = 1;
        screen.frame = {0, 0, 1512, 982};
        screen.auxiliaryTopLeftArea = Rect{0, 950, 664, 32};
        screen.auxiliaryTopRightArea = Rect{848, 950, 664, 32};
        screens.set({screen}, {1});
        store = HostStore::create({screens, workspace, secrets, http, bundle, clock});
    }
    [[nodiscard]] bool isApplied() const { return store->assignment().estimatedCents == 1234; }

    FakeScreens screens;
    FakeWorkspace workspace;
    FakeSecretStore secrets;
    FakeBundle bundle;
    StandingClock clock;
    InstantHttpClient http;
    std::shared_ptr<HostStore> store;
};

} // namespace brimlet
