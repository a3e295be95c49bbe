#include "platform/mac/macsecretstore.h"

#include "platform/mac/rules/keychainquery.h"

#include <CoreFoundation/CoreFoundation.h>
#include <Security/Security.h>

#include <array>
#include <chrono>
#include <memory>
#include <type_traits>
#include <utility>
#include <variant>

namespace brimlet {
namespace {

struct CFReleaser final {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
/// Owns one reference: CFOwner<CFDataRef>.
template <typename Ref>
using CFOwner = std::unique_ptr<std::remove_pointer_t<Ref>, CFReleaser>;

/// The program's start waits for one read and must take less than two seconds.
constexpr std::chrono::milliseconds kReadTimeout(1500);

static_assert(keychainstatus::kSuccess == errSecSuccess);
static_assert(keychainstatus::kUserCanceled == errSecUserCanceled);
static_assert(keychainstatus::kAuthFailed == errSecAuthFailed);
static_assert(keychainstatus::kItemNotFound == errSecItemNotFound);
static_assert(keychainstatus::kInteractionNotAllowed == errSecInteractionNotAllowed);
static_assert(keychainstatus::kInteractionRequired == errSecInteractionRequired);

CFStringRef native(KeychainKey key) {
    const std::array constants{kSecClass,     kSecAttrService, kSecAttrAccount,
                               kSecValueData, kSecReturnData,  kSecMatchLimit};
    return constants.at(static_cast<std::size_t>(key));
}

struct Native final {
    CFOwner<CFTypeRef> operator()(KeychainConstant value) const {
        return CFOwner<CFTypeRef>(CFRetain(value == KeychainConstant::ClassGenericPassword
                                               ? kSecClassGenericPassword
                                               : kSecMatchLimitOne));
    }
    CFOwner<CFTypeRef> operator()(bool value) const {
        return CFOwner<CFTypeRef>(CFRetain(value ? kCFBooleanTrue : kCFBooleanFalse));
    }
    CFOwner<CFTypeRef> operator()(const QString& value) const {
        return CFOwner<CFTypeRef>(CFStringCreateWithCharacters(
            kCFAllocatorDefault, reinterpret_cast<const UniChar*>(value.utf16()), value.size()));
    }
    CFOwner<CFTypeRef> operator()(const QByteArray& value) const {
        return CFOwner<CFTypeRef>(CFDataCreate(
            kCFAllocatorDefault, reinterpret_cast<const UInt8*>(value.constData()), value.size()));
    }
};

CFOwner<CFMutableDictionaryRef> native(const KeychainQuery& query) {
    CFOwner<CFMutableDictionaryRef> dictionary(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
    for (const auto& [key, value] : query) {
        CFDictionarySetValue(dictionary.get(), native(key), std::visit(Native(), value).get());
    }
    return dictionary;
}

SecretResult copyMatching(const KeychainQuery& query) {
    CFTypeRef found = nullptr;
    const OSStatus status = SecItemCopyMatching(native(query).get(), &found);
    const CFOwner<CFTypeRef> owner(found);
    if (found == nullptr || CFGetTypeID(found) != CFDataGetTypeID()) {
        return keychainResult(status, std::nullopt);
    }
    const auto* const data = static_cast<CFDataRef>(found);
    return keychainResult(status, QByteArray(reinterpret_cast<const char*>(CFDataGetBytePtr(data)),
                                             static_cast<qsizetype>(CFDataGetLength(data))));
}

} // namespace

/// Reads again whenever the user unlocks a keychain. The function is deprecated, as all keychain
/// functions are, and has no successor.
class MacSecretStore::UnlockWatch final {
public:
    explicit UnlockWatch(SecretRead& read) {
        SecKeychainAddCallback(&UnlockWatch::unlocked, kSecUnlockEventMask, &read);
    }
    ~UnlockWatch() { SecKeychainRemoveCallback(&UnlockWatch::unlocked); }
    UnlockWatch(const UnlockWatch&) = delete;
    UnlockWatch& operator=(const UnlockWatch&) = delete;

private:
    /// Called by the run loop of the thread that added it, the main thread.
    static OSStatus unlocked(SecKeychainEvent /*event*/, SecKeychainCallbackInfo* /*info*/,
                             void* read) {
        static_cast<SecretRead*>(read)->readAgain();
        return errSecSuccess;
    }
};

MacSecretStore::MacSecretStore() = default;
MacSecretStore::~MacSecretStore() = default;

SecretResult MacSecretStore::read(const QString& service, const QString& account, LateAnswer late) {
    m_watch.reset();
    const auto deadline = std::chrono::steady_clock::now() + kReadTimeout;
    m_read = std::make_unique<SecretRead>(
        m_worker,
        [query = keychainReading(service, account)](const std::stop_token& /*stop*/) {
            return copyMatching(query);
        },
        std::move(late));
    SecretResult result = m_read->readUntil(deadline);
    if (isAnswer(result)) {
        m_read.reset();
    } else {
        m_watch = std::make_unique<UnlockWatch>(*m_read);
    }
    return result;
}

void MacSecretStore::replace(const QString& service, const QString& account,
                             const std::optional<QByteArray>& value) {
    m_watch.reset();
    if (m_read) {
        m_read->ignoreAnswer();
    }
    m_worker.post([item = keychainItem(service, account),
                   adding = value ? std::optional(keychainAdding(service, account, *value))
                                  : std::nullopt](const std::stop_token& /*stop*/) {
        static_cast<void>(SecItemDelete(native(item).get()));
        if (adding) {
            static_cast<void>(SecItemAdd(native(*adding).get(), nullptr));
        }
    });
}

} // namespace brimlet
