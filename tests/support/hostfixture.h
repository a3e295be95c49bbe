#pragma once

#include "host/hoststore.h"
#include "platform/starttask.h"
#include "tests/support/fakeclock.h"
#include "tests/support/fakehttpclient.h"
#include "tests/support/fakes.h"

namespace brimlet {

/// The built-in screen of a 14-inch laptop, with a notch 184 points wide.
inline Screen notchedScreen(std::uint32_t number) {
    Screen screen;
    screen.number = number;
    screen.frame = {0, 0, 1512, 982};
    screen.auxiliaryTopLeftArea = Rect{0, 950, 664, 32};
    screen.auxiliaryTopRightArea = Rect{848, 950, 664, 32};
    return screen;
}

/// A store on a notched machine in the Applications folder, with every port a fake.
struct HostFixture final {
    HostFixture() { screens.set({notchedScreen(1)}, {1}); }

    [[nodiscard]] HostPorts ports() { return {screens, workspace, secrets, http, bundle, clock}; }
    [[nodiscard]] std::shared_ptr<HostStore> makeStore() { return HostStore::create(ports()); }

    void keepToken(const QByteArray& token) {
        secrets.replace(QStringLiteral("app.brimlet.host"), QStringLiteral("host-token"), token);
    }
    [[nodiscard]] SecretResult keptToken() {
        return secrets.read(QStringLiteral("app.brimlet.host"), QStringLiteral("host-token"), {});
    }

    FakeScreens screens;
    FakeWorkspace workspace;
    FakeSecretStore secrets;
    FakeBundle bundle;
    FakeClock clock;
    // Last, so that its requests end before the objects they use.
    FakeHttpClient http{clock};
};

/// A store that has received a display reply with a live week.
inline std::shared_ptr<HostStore> makeLiveStore(HostFixture& host) {
    host.http.answer(QStringLiteral("/api/display"), 200, R"({"weekStatus":"live"})");
    auto store = host.makeStore();
    startTask(store->refreshDisplay());
    return store;
}

} // namespace brimlet
