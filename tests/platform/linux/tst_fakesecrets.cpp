#include "tests/support/fakes.h"
#include "tests/support/secretcontract.h"
#include "tests/support/testprogram.h"

using namespace brimlet;

/// The store that other tests use must behave like a real one.
class FakeSecretsTest final : public SecretContract {
    Q_OBJECT

private:
    [[nodiscard]] SecretStore& store() override { return m_store; }
    [[nodiscard]] qsizetype count(const QString& service, const QString& account) override {
        return m_store.count(service, account);
    }

    FakeSecretStore m_store;
};

BRIMLET_TEST(FakeSecretsTest, QCoreApplication)
#include "tst_fakesecrets.moc"
