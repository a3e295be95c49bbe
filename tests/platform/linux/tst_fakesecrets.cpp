#include "tests/support/fakes.h"
#include "tests/support/secretcontract.h"
#include "tests/support/testprogram.h"

using namespace brimlet;

/// The fake store fulfils the same contract as the real ones.
class FakeSecretsTest final : public SecretContract {
    Q_OBJECT

private:
    [[nodiscard]] SecretStore& store() override { return m_store; }
    void reopen() override {} // the items last as long as the store
    [[nodiscard]] qsizetype count(const QString& service, const QString& account) override {
        return m_store.count(service, account);
    }

    FakeSecretStore m_store;
};

BRIMLET_TEST(FakeSecretsTest, QCoreApplication)
#include "tst_fakesecrets.moc"
