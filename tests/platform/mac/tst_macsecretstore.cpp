#include "platform/mac/macsecretstore.h"
#include "tests/support/secretcontract.h"
#include "tests/support/testprogram.h"

#include <QProcess>

using namespace brimlet;

/// With the default keychain of the user who runs the test, which has to be unlocked.
class TestMacSecretStore final : public SecretContract {
    Q_OBJECT

private:
    [[nodiscard]] SecretStore& store() override { return *m_store; }
    void reopen() override { m_store.emplace(); }
    /// A keychain has at most one item of a name.
    [[nodiscard]] qsizetype count(const QString& service, const QString& account) override {
        return QProcess::execute(QStringLiteral("sh"),
                                 {QStringLiteral("-c"),
                                  QStringLiteral("exec security find-generic-password -s \"$1\" "
                                                 "-a \"$2\" >/dev/null 2>&1"),
                                  QStringLiteral("sh"), service, account}) == 0
                   ? 1
                   : 0;
    }

    std::optional<MacSecretStore> m_store;

private Q_SLOTS:
    void init() { m_store.emplace(); }
};

BRIMLET_TEST(TestMacSecretStore, QCoreApplication)
#include "tst_macsecretstore.moc"
