#include "tests/mac/gnustep/fakekeychain.h"

#include <Security/Security.h>

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <mutex>
#include <vector>

// Every object of CoreFoundation. Its types are declared only, so pointers to them are cast.
namespace {

struct Object final {
    CFTypeID type = 0;
    bool isConstant = false;
    QString text;
    QByteArray bytes;
    std::map<const void*, const void*> entries;
    bool retainsValues = false;
    std::atomic<int> references = 1;
};

enum : CFTypeID { kString = 7, kBoolean = 21, kDictionary = 18, kData = 20 };
enum : OSStatus { kParameterError = -50, kDuplicateItem = -25299, kNotAvailable = -25291 };

std::atomic<int> live = 0;

const Object* object(const void* reference) {
    if (reference == nullptr) {
        std::abort(); // as CoreFoundation does
    }
    return static_cast<const Object*>(reference);
}

Object* make(CFTypeID type) {
    ++live;
    auto* const made = new Object;
    made->type = type;
    return made;
}

template <typename Ref>
Ref constant(CFTypeID type, const char* text) {
    auto* const made = new Object;
    made->type = type;
    made->isConstant = true;
    made->text = QString::fromLatin1(text);
    return reinterpret_cast<Ref>(made);
}

struct Item final {
    QString service;
    QString account;
    QByteArray value;
};

std::mutex mutex;
std::condition_variable changed;
std::vector<Item> items;
brimlet::fakekeychain::State state = brimlet::fakekeychain::State::Unlocked;
SecKeychainCallback unlocked = nullptr;
void* unlockedContext = nullptr;

/// The status of a call, after the user has answered.
OSStatus access(std::unique_lock<std::mutex>& lock) {
    using brimlet::fakekeychain::State;
    changed.wait(lock, [] { return state != State::DialogUnanswered; });
    switch (state) {
    case State::Locked:
        return errSecInteractionNotAllowed;
    case State::Cancelled:
        return errSecUserCanceled;
    case State::Broken:
        return kNotAvailable;
    default:
        return errSecSuccess;
    }
}

const Object* value(CFDictionaryRef query, CFStringRef key) {
    const auto& entries = object(query)->entries;
    const auto found = entries.find(key);
    return found == entries.end() ? nullptr : object(found->second);
}

/// Whether the query names a generic password; `item` gets its name.
bool names(CFDictionaryRef query, Item& item) {
    const Object* const service = value(query, kSecAttrService);
    const Object* const account = value(query, kSecAttrAccount);
    if (value(query, kSecClass) != object(kSecClassGenericPassword) || service == nullptr ||
        account == nullptr || service->type != kString || account->type != kString) {
        return false;
    }
    item.service = service->text;
    item.account = account->text;
    return true;
}

bool isSame(const Item& one, const Item& other) {
    return one.service == other.service && one.account == other.account;
}

} // namespace

extern "C" {
const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFBooleanRef kCFBooleanTrue = constant<CFBooleanRef>(kBoolean, "true");
const CFBooleanRef kCFBooleanFalse = constant<CFBooleanRef>(kBoolean, "false");
const CFStringRef kSecClass = constant<CFStringRef>(kString, "class");
const CFStringRef kSecClassGenericPassword = constant<CFStringRef>(kString, "genp");
const CFStringRef kSecAttrService = constant<CFStringRef>(kString, "svce");
const CFStringRef kSecAttrAccount = constant<CFStringRef>(kString, "acct");
const CFStringRef kSecValueData = constant<CFStringRef>(kString, "v_Data");
const CFStringRef kSecReturnData = constant<CFStringRef>(kString, "r_Data");
const CFStringRef kSecMatchLimit = constant<CFStringRef>(kString, "m_Limit");
const CFStringRef kSecMatchLimitOne = constant<CFStringRef>(kString, "m_LimitOne");
}

struct CFDictionaryKeyCallBacks {};
struct CFDictionaryValueCallBacks {};
const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;

CFTypeRef CFRetain(CFTypeRef cf) {
    ++const_cast<Object*>(object(cf))->references;
    return cf;
}

void CFRelease(CFTypeRef cf) {
    auto* const released = const_cast<Object*>(object(cf));
    if (--released->references > 0) {
        return;
    }
    if (released->isConstant) {
        std::abort(); // released more often than retained
    }
    for (const auto& [key, each] : released->entries) {
        if (released->retainsValues) {
            CFRelease(each);
        }
    }
    --live;
    delete released;
}

CFTypeID CFGetTypeID(CFTypeRef cf) {
    return object(cf)->type;
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef /*alloc*/, const UniChar* chars,
                                         CFIndex numChars) {
    Object* const made = make(kString);
    made->text = QString::fromUtf16(reinterpret_cast<const char16_t*>(chars), numChars);
    return reinterpret_cast<CFStringRef>(made);
}

CFTypeID CFDataGetTypeID() {
    return kData;
}

CFDataRef CFDataCreate(CFAllocatorRef /*allocator*/, const UInt8* bytes, CFIndex length) {
    Object* const made = make(kData);
    made->bytes = QByteArray(reinterpret_cast<const char*>(bytes), length);
    return reinterpret_cast<CFDataRef>(made);
}

CFIndex CFDataGetLength(CFDataRef theData) {
    return object(theData)->bytes.size();
}

const UInt8* CFDataGetBytePtr(CFDataRef theData) {
    return reinterpret_cast<const UInt8*>(object(theData)->bytes.constData());
}

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef /*allocator*/, CFIndex /*capacity*/,
                                                 const CFDictionaryKeyCallBacks* /*keyCallBacks*/,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
    Object* const made = make(kDictionary);
    made->retainsValues = valueCallBacks != nullptr;
    return reinterpret_cast<CFMutableDictionaryRef>(made);
}

void CFDictionarySetValue(CFMutableDictionaryRef theDict, const void* key, const void* value) {
    auto* const dictionary = const_cast<Object*>(object(theDict));
    if (dictionary->retainsValues) {
        CFRetain(value);
    }
    dictionary->entries[key] = value;
}

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result) {
    std::unique_lock lock(mutex);
    Item wanted;
    if (!names(query, wanted) || value(query, kSecMatchLimit) != object(kSecMatchLimitOne)) {
        return kParameterError;
    }
    for (const Item& each : items) {
        if (!isSame(each, wanted)) {
            continue;
        }
        if (const OSStatus status = access(lock); status != errSecSuccess) {
            return status;
        }
        const bool isData = state != brimlet::fakekeychain::State::WrongType;
        if (value(query, kSecReturnData) == object(kCFBooleanTrue)) {
            Object* const found = make(isData ? kData : kString);
            found->bytes = each.value;
            *result = found;
        }
        return errSecSuccess;
    }
    return errSecItemNotFound;
}

OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef* /*result*/) {
    std::unique_lock lock(mutex);
    Item added;
    const Object* const data = value(attributes, kSecValueData);
    if (!names(attributes, added) || data == nullptr || data->type != kData) {
        return kParameterError;
    }
    if (const OSStatus status = access(lock); status != errSecSuccess) {
        return status;
    }
    for (const Item& each : items) {
        if (isSame(each, added)) {
            return kDuplicateItem;
        }
    }
    added.value = data->bytes;
    items.push_back(added);
    return errSecSuccess;
}

OSStatus SecItemDelete(CFDictionaryRef query) {
    std::unique_lock lock(mutex);
    Item named;
    if (!names(query, named)) {
        return kParameterError;
    }
    if (const OSStatus status = access(lock); status != errSecSuccess) {
        return status;
    }
    return std::erase_if(items, [&](const Item& each) { return isSame(each, named); }) > 0
               ? OSStatus(errSecSuccess)
               : OSStatus(errSecItemNotFound);
}

OSStatus SecKeychainAddCallback(SecKeychainCallback callback, SecKeychainEventMask mask,
                                void* context) {
    if (mask != kSecUnlockEventMask || unlocked != nullptr) {
        std::abort();
    }
    unlocked = callback;
    unlockedContext = context;
    return errSecSuccess;
}

OSStatus SecKeychainRemoveCallback(SecKeychainCallback callback) {
    if (callback == unlocked) {
        unlocked = nullptr;
    }
    return errSecSuccess;
}

namespace brimlet::fakekeychain {

void setState(State next) {
    const std::lock_guard lock(mutex);
    state = next;
    changed.notify_all();
}

void reset() {
    setState(State::Unlocked);
    const std::lock_guard lock(mutex);
    items.clear();
}

void unlock() {
    setState(State::Unlocked);
    if (unlocked != nullptr) {
        unlocked(0, nullptr, unlockedContext);
    }
}

bool isUnlockObserved() {
    return unlocked != nullptr;
}

qsizetype count(const QString& service, const QString& account) {
    const std::lock_guard lock(mutex);
    return std::count_if(items.begin(), items.end(), [&](const Item& each) {
        return each.service == service && each.account == account;
    });
}

void put(const QString& service, const QString& account, const QByteArray& value) {
    const std::lock_guard lock(mutex);
    items.push_back({service, account, value});
}

int liveObjects() {
    return live;
}

} // namespace brimlet::fakekeychain
