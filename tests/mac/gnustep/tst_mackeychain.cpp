#include "platform/mac/macsecretstore.h"
#include "tests/mac/gnustep/fakekeychain.h"
#include "tests/support/secretcontract.h"
#include "tests/support/testprogram.h"

#include <vector>

using namespace brimlet;
using fakekeychain::State;

/// The adapter of the keychain with one in memory.
class TestMacKeychain final : public SecretContract {
    Q_OBJECT

private:
    [[nodiscard]] SecretStore& store() override { return *m_store; }
    void reopen() override { m_store.emplace(); }
    [[nodiscard]] qsizetype count(const QString& service, const QString& account) override {
        return fakekeychain::count(service, account);
    }

    /// An item that another run of the program has left.
    void put() { fakekeychain::put(m_service, m_account, "token"); }
    /// Reads the item; what comes late is noted.
    [[nodiscard]] SecretResult readNotingLate() {
        return store().read(m_service, m_account,
                            [this](const SecretResult& late) { m_late.push_back(late); });
    }

    std::optional<MacSecretStore> m_store;
    std::vector<SecretResult> m_late;

private Q_SLOTS:
    void init() {
        fakekeychain::reset();
        m_late.clear();
        m_store.emplace();
    }
    void cleanupTestCase() {
        m_store.reset();
        QVERIFY(!fakekeychain::isUnlockObserved());
        QCOMPARE(fakekeychain::liveObjects(), 0);
    }

    void aFailureIsTold_data() {
        QTest::addColumn<State>("state");
        QTest::addColumn<SecretError>("error");
        QTest::newRow("locked") << State::Locked << SecretError::Locked;
        QTest::newRow("cancelled") << State::Cancelled << SecretError::Locked;
        QTest::newRow("no data") << State::WrongType << SecretError::Unavailable;
        QTest::newRow("broken") << State::Broken << SecretError::Unavailable;
    }
    void aFailureIsTold() {
        QFETCH(State, state);
        QFETCH(SecretError, error);
        put();
        fakekeychain::setState(state);
        QCOMPARE(readNotingLate(), SecretResult(error));
        // Once it is unlocked the item is read again.
        fakekeychain::unlock();
        QTRY_COMPARE(m_late, std::vector<SecretResult>{QByteArray("token")});
    }

    void anAnswerEndsTheWatch() {
        put();
        QCOMPARE(readNotingLate(), SecretResult(QByteArray("token")));
        QVERIFY(!fakekeychain::isUnlockObserved());
        fakekeychain::setState(State::Locked);
        QCOMPARE(readNotingLate(), SecretResult(SecretError::Locked));
        QVERIFY(fakekeychain::isUnlockObserved());
        fakekeychain::setState(State::Unlocked);
        QCOMPARE(readNotingLate(), SecretResult(QByteArray("token")));
        QVERIFY(!fakekeychain::isUnlockObserved());
    }

    void aWriteEndsTheReadBeforeIt() {
        put();
        fakekeychain::setState(State::Locked);
        QCOMPARE(readNotingLate(), SecretResult(SecretError::Locked));
        store().replace(m_service, m_account, "another");
        QVERIFY(!fakekeychain::isUnlockObserved());
        fakekeychain::unlock();
        QVERIFY(std::holds_alternative<QByteArray>(readNotingLate()));
        QVERIFY(m_late.empty());
    }

    void anUnlockAfterDestructionDoesNoHarm() {
        put();
        fakekeychain::setState(State::Locked);
        QCOMPARE(readNotingLate(), SecretResult(SecretError::Locked));
        reopen();
        fakekeychain::unlock();
        QVERIFY(m_late.empty());
    }

    void aDialogLeftOpenIsWaitedForInTheBackground() {
        put();
        fakekeychain::setState(State::DialogUnanswered);
        QCOMPARE(readNotingLate(), SecretResult(SecretError::TimedOut));
        fakekeychain::setState(State::Unlocked);
        QTRY_COMPARE(m_late, std::vector<SecretResult>{QByteArray("token")});
    }
};

BRIMLET_TEST(TestMacKeychain, QCoreApplication)
#include "tst_mackeychain.moc"
