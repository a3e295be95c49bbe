// Not Apple's header: the declarations of Foundation that Brimlet uses, written from the public
// documentation. See tests/mac/README.md.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <CoreServices/CoreServices.h>

#ifdef BRIMLET_BOOL_IS_BOOL // as on Apple silicon
using BOOL = bool;
#else // as on Intel
using BOOL = signed char;
#endif
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr

using NSInteger = long;
using NSUInteger = unsigned long;
using unichar = unsigned short;

// As in the SDK for C++: options are integers, so that they can be combined; an enumeration is a
// separate type.
#define NS_OPTIONS(type, name)                                                                     \
    type name;                                                                                     \
    enum : type
#define NS_ENUM(type, name)                                                                        \
    enum name : type name;                                                                         \
    enum name : type

using NSRect = CGRect;
using NSPoint = CGPoint;
using NSSize = CGSize;
struct NSRange {
    NSUInteger location;
    NSUInteger length;
};

extern "C" const NSRect NSZeroRect;
NSRect NSMakeRect(CGFloat x, CGFloat y, CGFloat w, CGFloat h);
NSPoint NSMakePoint(CGFloat x, CGFloat y);
BOOL NSEqualRects(NSRect aRect, NSRect bRect);
NSRange NSMakeRange(NSUInteger loc, NSUInteger len);

@class NSArray<ObjectType>, NSString, NSURL;

// implied by for (... in ...)
struct NSFastEnumerationState;

@protocol NSObject
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)isEqual:(id)object;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (Class)class;
+ (instancetype)alloc;
- (instancetype)init;
@end

@interface NSString : NSObject
+ (instancetype)stringWithCharacters:(const unichar*)characters length:(NSUInteger)length;
@property(readonly) NSUInteger length;
- (void)getCharacters:(unichar*)buffer range:(NSRange)range;
@end

@interface NSNumber : NSObject
@property(readonly) double doubleValue;
@end

@interface NSArray<__covariant ObjectType> : NSObject
// implied by for (... in ...)
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)len;
@end

@interface NSDictionary<__covariant KeyType, __covariant ObjectType> : NSObject
- (ObjectType)objectForKey:(KeyType)key;
@end

@interface NSURL : NSObject
+ (instancetype)URLWithString:(NSString*)URLString;
@end

@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
@property(readonly, copy) NSString* bundlePath;
@property(readonly, copy) NSString* bundleIdentifier;
- (id)objectForInfoDictionaryKey:(NSString*)key;
@end

typedef NS_OPTIONS(unsigned long long, NSActivityOptions) {
    NSActivityUserInitiatedAllowingIdleSystemSleep = 0x00FFFFFFULL & ~(1ULL << 20),
};

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options
                                  reason:(NSString*)reason; // macOS 10.9
- (void)endActivity:(id<NSObject>)activity;                 // macOS 10.9
@end

@interface NSOperationQueue : NSObject
@property(class, readonly, strong) NSOperationQueue* mainQueue;
@end

typedef NSString* NSNotificationName;

@interface NSNotification : NSObject
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)obj
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)removeObserver:(id)observer;
- (void)postNotificationName:(NSNotificationName)aName object:(id)anObject;
@end

@interface NSAppleEventDescriptor : NSObject
@end

@interface NSAppleEventManager : NSObject
+ (NSAppleEventManager*)sharedAppleEventManager;
- (void)setEventHandler:(id)handler
            andSelector:(SEL)handleEventSelector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID;
@end
