#pragma once

#include "platform/bundle.h"
#include "platform/cachesfolder.h"
#include "platform/menuwindow.h"
#include "platform/observers.h"
#include "platform/overlaywindow.h"
#include "platform/reducemotion.h"
#include "platform/screens.h"
#include "platform/secretstore.h"
#include "platform/statusitem.h"
#include "platform/workspace.h"

#include <QHash>
#include <QVariantMap>

#include <algorithm>

namespace brimlet {

/// Screens that a test sets. Only the numbers it lists are built in, 0 included.
class FakeScreens final : public Screens {
public:
    [[nodiscard]] std::vector<Screen> list() const override { return m_screens; }
    [[nodiscard]] bool isBuiltIn(std::uint32_t displayNumber) const override {
        return std::find(m_builtIn.begin(), m_builtIn.end(), displayNumber) != m_builtIn.end();
    }
    ObserverToken observeChanges(std::function<void()> changed) override {
        return m_observers.add(std::move(changed));
    }

    void set(std::vector<Screen> screens, std::vector<std::uint32_t> builtIn) {
        m_screens = std::move(screens);
        m_builtIn = std::move(builtIn);
        m_observers.notify();
    }

private:
    std::vector<Screen> m_screens;
    std::vector<std::uint32_t> m_builtIn;
    Observers m_observers;
};

class FakeWorkspace final : public Workspace {
public:
    ObserverToken observeScreensDidSleep(std::function<void()> block) override {
        willObserve("sleep");
        return m_sleep.add(std::move(block));
    }
    ObserverToken observeScreensDidWake(std::function<void()> block) override {
        willObserve("wake");
        return m_wake.add(std::move(block));
    }
    [[nodiscard]] std::shared_ptr<void> delaySuspend() override {
        const auto delay = std::make_shared<int>();
        m_delays.push_back(delay);
        return delay;
    }
    void open(const Url& url) override { opened.push_back(url.absoluteString()); }

    [[nodiscard]] bool isSuspendDelayed() const {
        return std::any_of(m_delays.begin(), m_delays.end(),
                           [](const auto& delay) { return !delay.expired(); });
    }
    void screensDidSleep() { m_sleep.notify(); }
    void screensDidWake() { m_wake.notify(); }

    std::vector<QString> opened;
    /// Called with each new observer's notification, "sleep" or "wake".
    std::function<void(const char*)> willObserve = [](const char*) {};

private:
    Observers m_sleep;
    Observers m_wake;
    std::vector<std::weak_ptr<void>> m_delays;
};

/// A store in memory that can fail, and recover.
class FakeSecretStore final : public SecretStore {
public:
    [[nodiscard]] SecretResult read(const QString& service, const QString& account,
                                    LateAnswer late) override {
        m_late = nullptr;
        if (failure) {
            m_late = [this, service, account, late] { late(find(service, account)); };
            return *failure;
        }
        return find(service, account);
    }
    void replace(const QString& service, const QString& account,
                 const std::optional<QByteArray>& value) override {
        if (forgetsOnReplace) {
            m_late = nullptr;
        }
        ++replacements;
        if (willWrite) {
            willWrite();
        }
        if (failure) {
            return;
        }
        m_items.remove({service, account});
        if (value) {
            m_items.insert({service, account}, *value);
        }
    }

    /// Ends the failure and delivers the answer to a read that failed.
    void recover() {
        failure.reset();
        if (m_late) {
            std::exchange(m_late, nullptr)();
        }
    }

    [[nodiscard]] qsizetype count(const QString& service, const QString& account) const {
        return m_items.count({service, account});
    }

    /// If set, the result of every read; writes then have no effect.
    std::optional<SecretError> failure;
    /// Whether `replace` ends a failed read, as it should.
    bool forgetsOnReplace = true;
    int replacements = 0;
    /// Called at the start of each `replace`.
    std::function<void()> willWrite;

private:
    [[nodiscard]] SecretResult find(const QString& service, const QString& account) const {
        const auto item = m_items.constFind({service, account});
        return item == m_items.cend() ? SecretResult(SecretError::NotFound) : SecretResult(*item);
    }

    QHash<std::pair<QString, QString>, QByteArray> m_items;
    std::function<void()> m_late;
};

class FakeBundle final : public Bundle {
public:
    [[nodiscard]] QString path() const override { return bundlePath; }
    [[nodiscard]] QVariant infoDictionaryValue(const QString& key) const override {
        return info.value(key);
    }
    [[nodiscard]] QString identifier() const override { return QStringLiteral("app.brimlet.host"); }

    QString bundlePath = QStringLiteral("/Applications/Brimlet.app");
    QVariantMap info;
};

class FakeReduceMotion final : public ReduceMotion {
public:
    [[nodiscard]] bool isOn() const override { return m_isOn; }
    ObserverToken observeChanges(std::function<void()> changed) override {
        return m_observers.add(std::move(changed));
    }

    void set(bool isOn) {
        m_isOn = isOn;
        m_observers.notify();
    }

private:
    bool m_isOn = false;
    Observers m_observers;
};

class FakeCachesFolder final : public CachesFolder {
public:
    [[nodiscard]] std::optional<QString> path() const override { return folder; }

    std::optional<QString> folder;
};

/// Records the calls in order, e.g. "front", "out", "ignores on", "frame".
class FakeOverlayWindow final : public OverlayWindow {
public:
    /// Outlives the window; owned by the test.
    struct Record {
        QStringList calls;
        Rect frame;
        bool isShown = false;
        bool ignoresMouseEvents = false;
    };

    explicit FakeOverlayWindow(Record& record)
        : m_record(record) {}

    void orderFrontRegardless() override {
        m_record.calls << QStringLiteral("front");
        m_record.isShown = true;
    }
    void orderOut() override {
        m_record.calls << QStringLiteral("out");
        m_record.isShown = false;
    }
    void setFrame(const Rect& frame) override {
        m_record.calls << QStringLiteral("frame");
        m_record.frame = frame;
    }
    void setIgnoresMouseEvents(bool ignores) override {
        m_record.calls << (ignores ? QStringLiteral("ignores on") : QStringLiteral("ignores off"));
        m_record.ignoresMouseEvents = ignores;
    }
    void setRegions(const QPainterPath& /*clickable*/, const QPainterPath& /*painted*/) override {
        m_record.calls << QStringLiteral("regions");
    }
    void updateContent(const QRegion& /*points*/) override {
        m_record.calls << QStringLiteral("content");
    }
    void showTexts(std::span<const TextStrip> /*texts*/) override {
        m_record.calls << QStringLiteral("step");
    }

private:
    Record& m_record;
};

/// A status item that a test shows and presses.
class FakeStatusItem final : public StatusItem {
public:
    [[nodiscard]] bool isShown() const override { return shown; }
    [[nodiscard]] std::optional<Rect> place() const override { return itsPlace; }
    ObserverToken observePlace(std::function<void()> changed) override {
        return m_placeObservers.add(std::move(changed));
    }
    void setToolTip(const QString& text) override { toolTips << text; }
    ObserverToken observePresses(std::function<void(std::optional<Rect>)> pressed) override {
        m_pressed.push_back(std::move(pressed));
        return ObserverToken{m_pressed.size()};
    }
    ObserverToken observeMenu(std::function<void(InstanceRequest)> chosen) override {
        choose = std::move(chosen);
        return ObserverToken{1};
    }

    /// The tray takes the item, or moves it.
    void moveTo(const Rect& place) {
        itsPlace = place;
        m_placeObservers.notify();
    }
    void press() const {
        for (const auto& pressed : m_pressed) {
            pressed(itsPlace);
        }
    }

    bool shown = true;
    std::optional<Rect> itsPlace = Rect{1400, 950, 24, 24};
    /// All that were set, in order.
    QStringList toolTips;
    /// Chooses an entry of its menu, once observed.
    std::function<void(InstanceRequest)> choose;

private:
    std::vector<std::function<void(std::optional<Rect>)>> m_pressed;
    Observers m_placeObservers;
};

/// Records where it was presented.
class FakeMenuWindow final : public MenuWindow {
public:
    /// Outlives the window; owned by the test.
    struct Record {
        FakeMenuWindow* window = nullptr;
        std::vector<std::optional<Rect>> presentations;
        std::vector<Rect> followed;
        bool isPresented = false;
    };

    explicit FakeMenuWindow(Record& record)
        : m_record(record) {
        record.window = this;
    }

    void present(const std::optional<Rect>& item) override {
        m_record.presentations.push_back(item);
        m_record.isPresented = true;
    }
    void follow(const Rect& item) override { m_record.followed.push_back(item); }
    void dismiss() override {
        m_record.isPresented = false;
        m_dismissals.notify();
    }
    [[nodiscard]] bool isPresented() const override { return m_record.isPresented; }
    ObserverToken observeDismissals(std::function<void()> dismissed) override {
        return m_dismissals.add(std::move(dismissed));
    }

private:
    Record& m_record;
    Observers m_dismissals;
};

} // namespace brimlet
