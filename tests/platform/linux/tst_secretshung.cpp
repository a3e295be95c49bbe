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
    QFAIL("the service does not answer");
}

} // namespace

/// With a secret service that owns its name on the bus and never replies.
class SecretsHungTest final : public QObject {
    Q_OBJECT

private:
    const QString m_service = QStringLiteral("app.brimlet.host");
    const QString m_account = QStringLiteral("host-token");

    void compareReadTimesOut(LibsecretStore& store) {
        QElapsedTimer timer;
        timer.start();
        QCOMPARE(store.read(m_service, m_account, neverAnswered),
                 SecretResult(SecretError::TimedOut));
        const qint64 elapsed = timer.elapsed();
        QVERIFY2(elapsed >= 1490 && elapsed < 1500 + 300 * slowness(),
                 qPrintable(QString::number(elapsed)));
    }

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void aReadEndsWithinTwoSeconds() {
        LibsecretStore store;
        compareReadTimesOut(store);
    }

    void aReadBehindHangingWritesStillEndsWithinTwoSeconds() {
        LibsecretStore store;
        store.replace(m_service, m_account, "token");
        compareReadTimesOut(store);
    }

    void theStoreGoesWithinASecondDespiteHangingWrites() {
        std::optional<LibsecretStore> store(std::in_place);
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 10; ++i) {
            store->replace(m_service, m_account, "token");
        }
        QVERIFY2(timer.elapsed() < 100 * slowness(), "a write waited for its answer");
        timer.restart();
        store.reset();
        QVERIFY2(timer.elapsed() < 900 * slowness(), qPrintable(QString::number(timer.elapsed())));
    }

    void aTimedOutReadDoesNotHoldUpTheEnd() {
        std::optional<LibsecretStore> store(std::in_place);
        compareReadTimesOut(*store);
        QElapsedTimer timer;
        timer.start();
        store.reset();
        QVERIFY2(timer.elapsed() < 300 * slowness(), qPrintable(QString::number(timer.elapsed())));
    }
};

BRIMLET_TEST(SecretsHungTest, QCoreApplication)
#include "tst_secretshung.moc"
