#pragma once

#include "platform/secretstore.h"
#include "tests/support/emulated.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTest>

#include <optional>

namespace brimlet {

/// The contract of every secret store. A test derives from this, provides the store, and may add
/// slots; the test target lists this header among its sources.
class SecretContract : public QObject {
    Q_OBJECT

protected:
    [[nodiscard]] virtual SecretStore& store() = 0;
    /// Destroys the store, even while it is writing, and makes another, as the next run of the
    /// program does.
    virtual void reopen() = 0;
    /// The number of items of that name, not counted through the store.
    [[nodiscard]] virtual qsizetype count(const QString& service, const QString& account) = 0;

    [[nodiscard]] SecretResult read(const QString& service, const QString& account) {
        return store().read(service, account, [](const SecretResult&) {});
    }
    [[nodiscard]] std::optional<QByteArray> bytes(const QString& service, const QString& account) {
        const SecretResult result = read(service, account);
        const auto* const value = std::get_if<QByteArray>(&result);
        return value != nullptr ? std::optional(*value) : std::nullopt;
    }

    const QString m_service = QStringLiteral("app.brimlet.contract");
    const QString m_otherService = QStringLiteral("app.brimlet.contract.other");
    const QString m_account = QStringLiteral("host-token");
    const QString m_otherAccount = QStringLiteral("Tést account");

private Q_SLOTS:
    void cleanup() {
        for (const QString& service : {m_service, m_otherService}) {
            store().replace(service, m_account, std::nullopt);
            store().replace(service, m_otherAccount, std::nullopt);
            QCOMPARE(read(service, m_account), SecretResult(SecretError::NotFound));
            QCOMPARE(read(service, m_otherAccount), SecretResult(SecretError::NotFound));
        }
    }

    void anItemNeverAddedIsNotFound() {
        QCOMPARE(read(m_service, m_account), SecretResult(SecretError::NotFound));
    }

    void aValueIsReadToTheByte_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("a token") << QByteArray("bh_live_0123456789");
        QTest::newRow("blanks at both ends") << QByteArray("  a token\n");
        QTest::newRow("UTF-8") << QByteArray("T\xc3\xb6ken \xe2\x82\xac");
        QTest::newRow("not UTF-8") << QByteArray("\xff\xfe\x80 token");
        QTest::newRow("a NUL inside") << QByteArray("tok\0en", 6);
        QTest::newRow("a NUL at the end") << QByteArray("token\0", 6);
        QTest::newRow("empty") << QByteArray("");
        QTest::newRow("10 KB") << QByteArray("0123456789").repeated(1024);
    }

    void aValueIsReadToTheByte() {
        QFETCH(const QByteArray, value);
        store().replace(m_service, m_account, value);
        QCOMPARE(bytes(m_service, m_account), std::optional(value));
        QCOMPARE(count(m_service, m_account), 1);
    }

    void whatWasRemovedIsNotFound() {
        store().replace(m_service, m_account, "token");
        store().replace(m_service, m_account, std::nullopt);
        QCOMPARE(read(m_service, m_account), SecretResult(SecretError::NotFound));
        QCOMPARE(count(m_service, m_account), 0);
    }

    void removingAMissingItemDoesNoHarm() {
        store().replace(m_service, m_account, std::nullopt);
        store().replace(m_service, m_account, "token");
        QCOMPARE(bytes(m_service, m_account), std::optional<QByteArray>("token"));
    }

    void replacingAgainLeavesOneItem() {
        for (const char* const token : {"first", "second", "second"}) {
            store().replace(m_service, m_account, token);
        }
        QCOMPARE(bytes(m_service, m_account), std::optional<QByteArray>("second"));
        QCOMPARE(count(m_service, m_account), 1);
    }

    void itemsOfOtherNamesAreLeftAlone() {
        store().replace(m_otherService, m_account, "of the other service");
        store().replace(m_service, m_otherAccount, "of the other account");
        store().replace(m_service, m_account, "token");
        store().replace(m_service, m_account, std::nullopt);
        QCOMPARE(read(m_service, m_account), SecretResult(SecretError::NotFound));
        QCOMPARE(bytes(m_otherService, m_account),
                 std::optional<QByteArray>("of the other service"));
        QCOMPARE(bytes(m_service, m_otherAccount),
                 std::optional<QByteArray>("of the other account"));
    }

    void theNextRunReadsWhatThisOneWrote() {
        store().replace(m_service, m_account, "token");
        reopen();
        QCOMPARE(bytes(m_service, m_account), std::optional<QByteArray>("token"));
        store().replace(m_service, m_account, std::nullopt);
        reopen();
        QCOMPARE(read(m_service, m_account), SecretResult(SecretError::NotFound));
    }

    void aWriteReturnsBeforeItIsDone() {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < 50; ++i) {
            store().replace(m_service, m_account, "token");
        }
        QVERIFY2(timer.elapsed() < 100 * slowness(), qPrintable(QString::number(timer.elapsed())));
        // A read waits for all of them, and times out while they take too long.
        QTRY_COMPARE_WITH_TIMEOUT(bytes(m_service, m_account), std::optional<QByteArray>("token"),
                                  20'000);
        QCOMPARE(count(m_service, m_account), 1);
    }

    void aReadSeesEveryEarlierWrite() {
        for (int i = 0; i < 20; ++i) {
            const QByteArray token = "token " + QByteArray::number(i);
            store().replace(m_service, m_account, token);
            QCOMPARE(bytes(m_service, m_account), std::optional(token));
        }
    }
};

} // namespace brimlet
