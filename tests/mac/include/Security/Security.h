// Not Apple's header: the declarations of Security that Brimlet uses, written from the public
// documentation. See tests/mac/README.md.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

extern "C" {
extern const CFStringRef kSecClass;
extern const CFStringRef kSecClassGenericPassword;
extern const CFStringRef kSecAttrService;
extern const CFStringRef kSecAttrAccount;
extern const CFStringRef kSecValueData;
extern const CFStringRef kSecReturnData;
extern const CFStringRef kSecMatchLimit;
extern const CFStringRef kSecMatchLimitOne;

OSStatus SecItemCopyMatching(CFDictionaryRef query, CFTypeRef* result);
OSStatus SecItemAdd(CFDictionaryRef attributes, CFTypeRef* result);
OSStatus SecItemDelete(CFDictionaryRef query);

typedef UInt32 SecKeychainEvent;
typedef UInt32 SecKeychainEventMask;
struct SecKeychainCallbackInfo;
typedef OSStatus (*SecKeychainCallback)(SecKeychainEvent event, SecKeychainCallbackInfo* info,
                                        void* context);
OSStatus SecKeychainAddCallback(SecKeychainCallback callback, SecKeychainEventMask mask,
                                void* context);
OSStatus SecKeychainRemoveCallback(SecKeychainCallback callback);
}

enum : UInt32 {
    kSecUnlockEventMask = 1U << 2,
};

enum : OSStatus {
    errSecSuccess = 0,
    errSecUserCanceled = -128,
    errSecAuthFailed = -25293,
    errSecItemNotFound = -25300,
    errSecInteractionNotAllowed = -25308,
    errSecInteractionRequired = -25315,
};
