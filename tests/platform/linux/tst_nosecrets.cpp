#include "platform/linux/libsecretstore.h"
#include "tests/support/emulated.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTest>

#include <optional>

using namespace brimlet;

namespace {

void neverAnswered(const SecretResult& /*result*/) {
    QFAIL("there is no service that could answer");
}

} // namespace

/// Without a secret service, or without a session bus.
class NoSecretsTest final : public QObject {
    Q_OBJECT

private:
    const QString m_service = QStringLiteral("app.brimlet.host");
    const QString m_account = QStringLiteral("host-token");

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void everyCallEndsSoonAndAReadSaysWhy() {
        std::optional<LibsecretStore> store(std::in_place);
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(store->read(m_service, m_account, neverAnswered),
                 SecretResult(SecretError::Unavailable));
        store->replace(m_service, m_account, "token");
        QCOMPARE(store->read(m_service, m_account, neverAnswered),
                 SecretResult(SecretError::Unavailable));
        store.reset();
        QVERIFY2(timer.elapsed() < 500 * slowness(), qPrintable(QString::number(timer.elapsed())));
    }
};

BRIMLET_TEST(NoSecretsTest, QCoreApplication)
#include "tst_nosecrets.moc"
