#include "platform/linux/libsecretstore.h"
#include "tests/platform/linux/secretservicequery.h"
#include "tests/support/secretcontract.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>

using namespace brimlet;

/// Against a real keyring that is unlocked.
class SecretsTest final : public SecretContract {
    Q_OBJECT

private:
    [[nodiscard]] SecretStore& store() override { return *m_store; }
    [[nodiscard]] qsizetype count(const QString& service, const QString& account) override {
        return secretServiceCount(service, account);
    }
    [[nodiscard]] static qsizetype openDescriptors() {
        return QDir(QStringLiteral("/proc/self/fd"))
            .entryList(QDir::NoDotAndDotDot | QDir::AllEntries)
            .size();
    }

    std::optional<LibsecretStore> m_store;

private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
        m_store.emplace();
    }

    void theNextRunReadsWhatThisOneWrote() {
        m_store->add(m_service, m_account, "token");
        m_store.emplace(); // the old one goes at once, with the write still under way
        QCOMPARE(bytes(m_service, m_account), std::optional<QByteArray>("token"));
        m_store->remove(m_service, m_account);
        m_store.emplace();
        QCOMPARE(m_store->read(m_service, m_account), SecretResult(SecretError::NotFound));
    }

    void anItemOfAnotherProgramIsReadAndReplaced() {
        QProcess tool;
        tool.start(QStringLiteral("secret-tool"),
                   {QStringLiteral("store"), QStringLiteral("--label=By hand"),
                    QStringLiteral("service"), m_service, QStringLiteral("account"), m_account});
        tool.write("by hand");
        tool.closeWriteChannel();
        QVERIFY(tool.waitForFinished());
        QCOMPARE(tool.exitCode(), 0);

        QCOMPARE(bytes(m_service, m_account), std::optional<QByteArray>("by hand"));
        m_store->remove(m_service, m_account);
        m_store->add(m_service, m_account, "by the program");
        QCOMPARE(bytes(m_service, m_account), std::optional<QByteArray>("by the program"));
        QCOMPARE(count(m_service, m_account), 1);
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
        QCOMPARE(count(m_service, m_account), 1);
    }

    void manyCallsLeaveNoDescriptorBehind() {
        QCOMPARE(m_store->read(m_service, m_account), SecretResult(SecretError::NotFound));
        const qsizetype before = openDescriptors();
        for (int i = 0; i < 100; ++i) {
            QCOMPARE(m_store->read(m_service, m_account), SecretResult(SecretError::NotFound));
        }
        QTRY_VERIFY(openDescriptors() <= before);
    }
};

BRIMLET_TEST(SecretsTest, QCoreApplication)
#include "tst_secrets.moc"
