#include "platform/mac/macsecretstore.h"
#include "tests/support/secretcontract.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QProcess>

using namespace brimlet;

/// Against the default keychain of whoever runs the test, which has to be unlocked.
class TestMacSecretStore final : public SecretContract {
    Q_OBJECT

private:
    [[nodiscard]] SecretStore& store() override { return *m_store; }
    /// The keychain itself has at most one item of a name.
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

    void theNextRunReadsWhatThisOneWrote() {
        m_store->add(m_service, m_account, "token");
        m_store.emplace(); // the old one goes at once, with the write still under way
        QCOMPARE(bytes(m_service, m_account), std::optional<QByteArray>("token"));
    }

    void aWriteReturnsBeforeItIsDone() {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 50; ++i) {
            m_store->remove(m_service, m_account);
            m_store->add(m_service, m_account, "token");
        }
        QVERIFY2(timer.elapsed() < 100, qPrintable(QString::number(timer.elapsed())));
        // A read comes after all of them, if they leave it time.
        QTRY_COMPARE_WITH_TIMEOUT(bytes(m_service, m_account), std::optional<QByteArray>("token"),
                                  20'000);
    }
};

BRIMLET_TEST(TestMacSecretStore, QCoreApplication)
#include "tst_macsecretstore.moc"
