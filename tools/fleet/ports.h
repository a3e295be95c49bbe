#pragma once

#include "platform/bundle.h"
#include "platform/screens.h"
#include "platform/secretstore.h"
#include "platform/workspace.h"

namespace brimlet::fleet {

/// One built-in screen with a notch, which never changes.
class NotchedScreens final : public Screens {
public:
    [[nodiscard]] std::vector<Screen> list() const override;
    [[nodiscard]] bool isBuiltIn(std::uint32_t displayNumber) const override;
    ObserverToken observeChanges(std::function<void()> changed) override;
};

/// A workspace without a browser, whose screens never sleep.
class SleeplessWorkspace final : public Workspace {
public:
    ObserverToken observeScreensDidSleep(std::function<void()> block) override;
    ObserverToken observeScreensDidWake(std::function<void()> block) override;
    [[nodiscard]] std::shared_ptr<void> delaySuspend() override { return nullptr; }
    void open(const Url& url) override;
};

/// Holds only the host's token; an empty one means none.
class OneToken final : public SecretStore {
public:
    explicit OneToken(QByteArray token)
        : m_token(std::move(token)) {}

    [[nodiscard]] SecretResult read(const QString& service, const QString& account,
                                    LateAnswer late) override;
    void replace(const QString& service, const QString& account,
                 const std::optional<QByteArray>& value) override;

private:
    QByteArray m_token;
};

/// A program installed for the whole system, for one placement service.
class ServiceBundle final : public Bundle {
public:
    explicit ServiceBundle(QString root)
        : m_root(std::move(root)) {}

    [[nodiscard]] QString path() const override;
    [[nodiscard]] QVariant infoDictionaryValue(const QString& key) const override;
    [[nodiscard]] QString identifier() const override;

private:
    QString m_root;
};

} // namespace brimlet::fleet
