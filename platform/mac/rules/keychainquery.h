#pragma once

#include "platform/secretstore.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace brimlet {

/// Keys of a keychain query, named after the Security framework's constants without "kSec", in the
/// order of the adapter's list of those.
enum class KeychainKey { Class, AttrService, AttrAccount, ValueData, ReturnData, MatchLimit };

/// Values that are constants of the Security framework.
enum class KeychainConstant { ClassGenericPassword, MatchLimitOne };

using KeychainValue = std::variant<KeychainConstant, bool, QString, QByteArray>;

/// The dictionary passed to a keychain function. It has no access group and no protection class,
/// which a program without entitlements may not use.
using KeychainQuery = std::vector<std::pair<KeychainKey, KeychainValue>>;

/// Identifies the item; complete for SecItemDelete.
[[nodiscard]] KeychainQuery keychainItem(const QString& service, const QString& account);

/// For SecItemCopyMatching: requests the bytes of one item.
[[nodiscard]] KeychainQuery keychainReading(const QString& service, const QString& account);

/// For SecItemAdd: the item and its bytes.
[[nodiscard]] KeychainQuery keychainAdding(const QString& service, const QString& account,
                                           const QByteArray& value);

/// The OSStatus values that `keychainResult` distinguishes, with the numbers of the Security
/// framework's errSec constants.
namespace keychainstatus {
constexpr int kSuccess = 0;
constexpr int kUserCanceled = -128;
constexpr int kAuthFailed = -25293;
constexpr int kItemNotFound = -25300;
constexpr int kInteractionNotAllowed = -25308;
constexpr int kInteractionRequired = -25315;
} // namespace keychainstatus

/// The result of a read. `status` is the OSStatus of SecItemCopyMatching; `bytes` are absent when
/// it gave no CFData.
[[nodiscard]] SecretResult keychainResult(int status, const std::optional<QByteArray>& bytes);

} // namespace brimlet
