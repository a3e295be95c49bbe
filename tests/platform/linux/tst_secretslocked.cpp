#include "platform/linux/libsecretstore.h"
#include "tests/platform/linux/secretservicequery.h"
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

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void aLockedItemIsDistinguishedFromAMissingOne() {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(m_store.read(m_service, m_account), SecretResult(SecretError::Locked));
        QCOMPARE(m_store.read(m_service, QStringLiteral("another")),
                 SecretResult(SecretError::NotFound));
        QVERIFY2(timer.elapsed() < 1000, "a prompt was waited for");
    }

    void writesThatCannotUnlockChangeNothing() {
        QElapsedTimer timer;
        timer.start();
        m_store.remove(m_service, m_account);
        m_store.add(m_service, QStringLiteral("another"), "token");
        QVERIFY2(timer.elapsed() < 100, qPrintable(QString::number(timer.elapsed())));

        QCOMPARE(m_store.read(m_service, m_account), SecretResult(SecretError::Locked));
        QCOMPARE(m_store.read(m_service, QStringLiteral("another")),
                 SecretResult(SecretError::NotFound));
        QCOMPARE(secretServiceCount(m_service, m_account), 1);
    }
};

BRIMLET_TEST(SecretsLockedTest, QCoreApplication)
#include "tst_secretslocked.moc"
