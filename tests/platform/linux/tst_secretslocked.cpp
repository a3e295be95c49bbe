#include "platform/linux/libsecretstore.h"
#include "tests/platform/linux/secretservicequery.h"
#include "tests/support/emulated.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

using namespace brimlet;

/// With a real keyring that is locked and contains one item, on a desktop without a user who could
/// answer a prompt.
class SecretsLockedTest final : public QObject {
    Q_OBJECT

private:
    const QString m_service = QStringLiteral("app.brimlet.host");
    const QString m_account = QStringLiteral("host-token");
    LibsecretStore m_store;

    [[nodiscard]] SecretResult read(const QString& account) {
        return m_store.read(m_service, account,
                            [](const SecretResult&) { QFAIL("nothing unlocks the keyring"); });
    }

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void aReadSaysThatItIsLockedAndDoesNotWaitForAPrompt() {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(read(m_account), SecretResult(SecretError::Locked));
        QVERIFY2(timer.elapsed() < 1000 * slowness(), "a prompt was waited for");
    }

    void aMissingItemIsNotKnownToBeMissing() {
        QCOMPARE(read(QStringLiteral("another")), SecretResult(SecretError::Locked));
    }

    void writesThatCannotUnlockChangeNothing() {
        QElapsedTimer timer;
        timer.start();
        m_store.replace(m_service, m_account, std::nullopt);
        m_store.replace(m_service, QStringLiteral("another"), "token");
        QVERIFY2(timer.elapsed() < 100 * slowness(), qPrintable(QString::number(timer.elapsed())));

        QCOMPARE(read(m_account), SecretResult(SecretError::Locked));
        QCOMPARE(secretServiceCount(m_service, m_account), 1);
        QCOMPARE(secretServiceCount(m_service, QStringLiteral("another")), 0);
    }
};

BRIMLET_TEST(SecretsLockedTest, QCoreApplication)
#include "tst_secretslocked.moc"
