#include "platform/linux/libsecretstore.h"
#include "tests/support/emulated.h"
#include "tests/support/keyring.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

#include <optional>
#include <vector>

using namespace brimlet;

namespace {

const int kPatience = 10'000 * slowness();
const QString kService = QStringLiteral("app.brimlet.host");
const QString kAccount = QStringLiteral("host-token");
const SecretResult kToken = QByteArray("token");

} // namespace

/// With a real keyring that is locked, or started, after the read.
class SecretsLateTest final : public QObject {
    Q_OBJECT

    std::optional<Keyring> m_keyring;
    std::optional<LibsecretStore> m_store;
    std::vector<SecretResult> m_late;

    [[nodiscard]] SecretResult read(const QString& account = kAccount) {
        return m_store->read(kService, account,
                             [this](const SecretResult& result) { m_late.push_back(result); });
    }
    /// Gives the store the time in which another one asks the same service ten times.
    static void settle() {
        LibsecretStore other;
        for (int i = 0; i < 10; ++i) {
            QCoreApplication::processEvents();
            Q_UNUSED(other.read(kService, kAccount, [](const SecretResult&) {}))
        }
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void init() {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".?")));
        m_keyring.emplace(kService, kAccount, "token");
        m_store.emplace();
        m_late.clear();
    }
    void cleanup() {
        m_store.reset();
        m_keyring.reset();
    }

    void aKeyringUnlockedByThePromptGivesTheToken() {
        const KeyringPrompter prompter;
        m_keyring->startLocked();
        QCOMPARE(read(), SecretResult(SecretError::Locked));
        QCOMPARE(m_late.size(), 0U);
        prompter.giveRightPassword();
        QTRY_COMPARE_WITH_TIMEOUT(m_late.size(), 1U, kPatience);
        QCOMPARE(m_late.at(0), kToken);
    }

    void aDismissedPromptIsNotShownAgain() {
        const KeyringPrompter prompter;
        m_keyring->startLocked();
        QCOMPARE(read(), SecretResult(SecretError::Locked));
        prompter.dismiss();
        m_keyring->lock(); // reported as a change, so the store reads again
        settle();
        QVERIFY(!prompter.isShown());
        QCOMPARE(m_late.size(), 0U);
        m_keyring->unlock();
        QTRY_COMPARE_WITH_TIMEOUT(m_late.size(), 1U, kPatience);
        QCOMPARE(m_late.at(0), kToken);
    }

    void aKeyringStartedAfterTheReadGivesTheToken() {
        QCOMPARE(read(), SecretResult(SecretError::Unavailable));
        m_keyring->startUnlocked();
        QTRY_COMPARE_WITH_TIMEOUT(m_late.size(), 1U, kPatience);
        QCOMPARE(m_late.at(0), kToken);
    }

    void aKeyringStartedLockedAfterTheReadIsAwaited() {
        const KeyringPrompter prompter;
        QCOMPARE(read(), SecretResult(SecretError::Unavailable));
        m_keyring->startLocked();
        prompter.giveRightPassword();
        QTRY_COMPARE_WITH_TIMEOUT(m_late.size(), 1U, kPatience);
        QCOMPARE(m_late.at(0), kToken);
    }

    void aKeyringLockedAndUnlockedAgainGivesTheTokenOnce() {
        m_keyring->startUnlocked();
        QCOMPARE(read(), kToken);
        m_keyring->lock();
        QCOMPARE(read(), SecretResult(SecretError::Locked));
        m_keyring->unlock();
        QTRY_COMPARE_WITH_TIMEOUT(m_late.size(), 1U, kPatience);
        m_keyring->lock();
        m_keyring->unlock();
        settle();
        QCOMPARE(m_late, std::vector{kToken});
    }

    void aMissingItemIsKnownToBeMissingOnceTheKeyringIsUnlocked() {
        const KeyringPrompter prompter;
        m_keyring->startLocked();
        QCOMPARE(read(QStringLiteral("another")), SecretResult(SecretError::Locked));
        settle();
        QVERIFY(!prompter.isShown());
        m_keyring->unlock();
        QTRY_COMPARE_WITH_TIMEOUT(m_late.size(), 1U, kPatience);
        QCOMPARE(m_late.at(0), SecretResult(SecretError::NotFound));
    }

    void aTokenSavedBeforeThePromptIsAnsweredReplacesTheOldOne() {
        const KeyringPrompter prompter;
        m_keyring->startLocked();
        QCOMPARE(read(), SecretResult(SecretError::Locked));
        QTRY_VERIFY_WITH_TIMEOUT(prompter.isShown(), kPatience);
        m_store->replace(kService, kAccount, "new");
        prompter.giveRightPassword();
        LibsecretStore other;
        const auto readByOther = [&other] {
            return other.read(kService, kAccount, [](const SecretResult&) {});
        };
        QTRY_COMPARE_WITH_TIMEOUT(readByOther(), SecretResult(QByteArray("new")), kPatience);
        settle();
        QVERIFY(!prompter.isShown());
        QCOMPARE(m_late.size(), 0U);
    }

    void withoutACollectionNothingIsKnown() {
        m_keyring->startEmpty();
        QCOMPARE(read(), SecretResult(SecretError::Unavailable));
        settle();
        QCOMPARE(m_late.size(), 0U);
    }

    void aTokenIsAddedAlthoughTheProgramEndsWhileTheOldOneIsDeleted() {
        QProcess service;
        service.start(sourcePath(u"tests/support/session/secret-service"),
                      {QStringLiteral("deleting")});
        QVERIFY(service.waitForReadyRead(kPatience));
        m_store->replace(kService, kAccount, "new");
        m_store.reset();
        QByteArray output;
        QTRY_VERIFY_WITH_TIMEOUT(
            (service.waitForReadyRead(0), (output += service.readAll()).contains("created\n")),
            kPatience);
        service.kill();
        QVERIFY(service.waitForFinished());
    }

    void theStoreGoesAtOnceWhileAPromptIsShown() {
        const KeyringPrompter prompter;
        m_keyring->startLocked();
        QCOMPARE(read(), SecretResult(SecretError::Locked));
        QTRY_VERIFY_WITH_TIMEOUT(prompter.isShown(), kPatience);
        QElapsedTimer timer;
        timer.start();
        m_store.reset();
        QVERIFY2(timer.elapsed() < 500 * slowness(), qPrintable(QString::number(timer.elapsed())));
        QTRY_VERIFY_WITH_TIMEOUT(!prompter.isShown(), kPatience);
        QCOMPARE(m_late.size(), 0U);
    }
};

BRIMLET_TEST(SecretsLateTest, QCoreApplication)
#include "tst_secretslate.moc"
