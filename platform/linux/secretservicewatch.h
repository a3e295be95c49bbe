#pragma once

#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace brimlet {

/// Watches the session bus for what can make an item of the Secret Service readable. Not through
/// libsecret, whose prompts block a thread and cannot be cancelled. Does nothing without a bus.
class SecretServiceWatch final : public QObject {
    Q_OBJECT

public:
    SecretServiceWatch(const QString& service, const QString& account);
    /// Dismisses the prompt.
    ~SecretServiceWatch() override;

    /// Shows the desktop's prompt if the item is locked. At most once.
    void askToUnlock();
    [[nodiscard]] bool isPrompting() const { return !m_promptPath.isEmpty(); }

Q_SIGNALS:
    /// The Secret Service has appeared, one of its collections was created, changed, locked or
    /// unlocked, or the prompt has gone.
    void changed();

private Q_SLOTS:
    void promptCompleted();
    void propertiesChanged(const QString& interface, const QVariantMap& values,
                           const QStringList& invalidated);

private:
    void unlock(const QList<QDBusObjectPath>& items);
    /// Calls a method of the service that has one argument and two results.
    template <typename First, typename Second>
    void callService(const QString& method, const QVariant& argument,
                     std::function<void(First, Second)> answered);
    void callPrompt(const QString& method, const QVariantList& arguments) const;

    QMap<QString, QString> m_attributes;
    QDBusServiceWatcher m_service;
    QString m_promptPath; ///< Empty while there is no prompt.
    bool m_hasAsked = false;
};

} // namespace brimlet
