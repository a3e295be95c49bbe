#include "platform/mac/rules/keychainquery.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <map>

using namespace brimlet;

namespace {

using Attributes = std::map<KeychainKey, KeychainValue>;

const QString kService = QStringLiteral("app.brimlet.host");
const QString kAccount = QStringLiteral("host-token");

Attributes attributesOf(const KeychainQuery& query) {
    return {query.begin(), query.end()};
}

Attributes itemWith(const Attributes& more) {
    Attributes all{{KeychainKey::Class, KeychainConstant::ClassGenericPassword},
                   {KeychainKey::AttrService, kService},
                   {KeychainKey::AttrAccount, kAccount}};
    all.insert(more.begin(), more.end());
    return all;
}

} // namespace

class TestKeychainQuery final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anItemIsIdentifiedByClassServiceAndAccountAlone() {
        const KeychainQuery query = keychainItem(kService, kAccount);
        QCOMPARE(query.size(), 3U);
        QVERIFY(attributesOf(query) == itemWith({}));
    }

    void readingRequestsTheBytesOfOneItem() {
        const KeychainQuery query = keychainReading(kService, kAccount);
        QCOMPARE(query.size(), 5U);
        QVERIFY(attributesOf(query) ==
                itemWith({{KeychainKey::ReturnData, true},
                          {KeychainKey::MatchLimit, KeychainConstant::MatchLimitOne}}));
    }

    void addingGivesTheBytesAndNothingElse() {
        const QByteArray value("a\0b", 3);
        const KeychainQuery query = keychainAdding(kService, kAccount, value);
        QCOMPARE(query.size(), 4U);
        QVERIFY(attributesOf(query) == itemWith({{KeychainKey::ValueData, value}}));
    }

    void failuresAreTranslated_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<SecretError>("error");
        QTest::newRow("errSecItemNotFound") << -25300 << SecretError::NotFound;
        QTest::newRow("errSecInteractionNotAllowed") << -25308 << SecretError::Locked;
        QTest::newRow("errSecInteractionRequired") << -25315 << SecretError::Locked;
        QTest::newRow("errSecAuthFailed") << -25293 << SecretError::Locked;
        QTest::newRow("errSecUserCanceled") << -128 << SecretError::Locked;
        QTest::newRow("errSecMissingEntitlement") << -34018 << SecretError::Unavailable;
        QTest::newRow("errSecNotAvailable") << -25291 << SecretError::Unavailable;
        QTest::newRow("success without bytes") << 0 << SecretError::Unavailable;
    }
    void failuresAreTranslated() {
        QFETCH(int, status);
        const SecretResult result = keychainResult(status, std::nullopt);
        QVERIFY(std::holds_alternative<SecretError>(result));
        QTEST(std::get<SecretError>(result), "error");
    }

    void successGivesTheBytesUnchanged() {
        const QByteArray bytes("\xff\0x", 3);
        QVERIFY(keychainResult(0, bytes) == SecretResult(bytes));
        QVERIFY(keychainResult(0, QByteArray()) == SecretResult(QByteArray()));
    }

    void bytesOfAFailedCallAreIgnored() {
        QVERIFY(keychainResult(-25300, QByteArray("left over")) ==
                SecretResult(SecretError::NotFound));
    }
};

BRIMLET_TEST(TestKeychainQuery, brimlet::NoApplication)
#include "tst_keychainquery.moc"
