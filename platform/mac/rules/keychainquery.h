#pragma once

#include "platform/secretstore.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace brimlet {

/// The attributes of a keychain call, by the constants' names without their "kSec".
enum class KeychainKey { Class, AttrService, AttrAccount, ValueData, ReturnData, MatchLimit };

/// The values that are constants themselves.
enum class KeychainConstant { ClassGenericPassword, MatchLimitOne };

using KeychainValue = std::variant<KeychainConstant, bool, QString, QByteArray>;

/// What a call is asked with. Nothing but these attributes: a program without entitlements may not
/// name an access group or a protection class.
using KeychainQuery = std::vector<std::pair<KeychainKey, KeychainValue>>;

/// Names the item. Deleting takes no more.
[[nodiscard]] KeychainQuery keychainItem(const QString& service, const QString& account);

/// For SecItemCopyMatching: the item's bytes.
[[nodiscard]] KeychainQuery keychainReading(const QString& service, const QString& account);

/// For SecItemAdd.
[[nodiscard]] KeychainQuery keychainAdding(const QString& service, const QString& account,
                                           const QByteArray& value);

/// The statuses that are told apart, as the Security framework numbers them.
namespace keychainstatus {
constexpr int kSuccess = 0;
constexpr int kUserCanceled = -128;
constexpr int kAuthFailed = -25293;
constexpr int kItemNotFound = -25300;
constexpr int kInteractionNotAllowed = -25308;
constexpr int kInteractionRequired = -25315;
} // namespace keychainstatus

/// What reading came to. `status` is the OSStatus; `bytes` are absent where the call gave something
/// else than bytes or nothing.
[[nodiscard]] SecretResult keychainResult(int status, const std::optional<QByteArray>& bytes);

} // namespace brimlet
