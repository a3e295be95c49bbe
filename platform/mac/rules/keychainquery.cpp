#include "platform/mac/rules/keychainquery.h"

namespace brimlet {

KeychainQuery keychainItem(const QString& service, const QString& account) {
    return {{KeychainKey::Class, KeychainConstant::ClassGenericPassword},
            {KeychainKey::AttrService, service},
            {KeychainKey::AttrAccount, account}};
}

KeychainQuery keychainReading(const QString& service, const QString& account) {
    KeychainQuery query = keychainItem(service, account);
    query.emplace_back(KeychainKey::ReturnData, true);
    query.emplace_back(KeychainKey::MatchLimit, KeychainConstant::MatchLimitOne);
    return query;
}

KeychainQuery keychainAdding(const QString& service, const QString& account,
                             const QByteArray& value) {
    KeychainQuery query = keychainItem(service, account);
    query.emplace_back(KeychainKey::ValueData, value);
    return query;
}

SecretResult keychainResult(int status, const std::optional<QByteArray>& bytes) {
    switch (status) {
    case keychainstatus::kSuccess:
        return bytes ? SecretResult(*bytes) : SecretResult(SecretError::Unavailable);
    case keychainstatus::kItemNotFound:
        return SecretError::NotFound;
    case keychainstatus::kInteractionNotAllowed:
    case keychainstatus::kInteractionRequired:
    case keychainstatus::kAuthFailed:
    case keychainstatus::kUserCanceled:
        return SecretError::Locked;
    default:
        return SecretError::Unavailable;
    }
}

} // namespace brimlet
