#include "platform/linux/libsecretstore.h"
#include "tests/platform/linux/secretservicequery.h"
#include "tests/support/secretcontract.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

using namespace brimlet;

/// With a real keyring that is unlocked.
class SecretsTest final : public SecretContract {
    Q_OBJECT

private:
    [[nodiscard]] SecretStore& store() override { return *m_store; }
    void reopen() override { m_store.emplace(); }
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
        m_store->replace(m_service, m_account, "by the program");
        QCOMPARE(bytes(m_service, m_account), std::optional<QByteArray>("by the program"));
        QCOMPARE(count(m_service, m_account), 1);
    }

    void manyCallsLeaveNoDescriptorBehind() {
        QCOMPARE(read(m_service, m_account), SecretResult(SecretError::NotFound));
        const qsizetype before = openDescriptors();
        for (int i = 0; i < 100; ++i) {
            QCOMPARE(read(m_service, m_account), SecretResult(SecretError::NotFound));
        }
        QTRY_VERIFY(openDescriptors() <= before);
    }
};

BRIMLET_TEST(SecretsTest, QCoreApplication)
#include "tst_secrets.moc"
