#import "platform/mac/macbundle.h"

#import "platform/mac/nativetext.h"
#import "platform/mac/rules/applicationidentifier.h"

namespace brimlet {

QString MacBundle::path() const {
    return fromNative(NSBundle.mainBundle.bundlePath);
}

QVariant MacBundle::infoDictionaryValue(const QString& key) const {
    id value = [NSBundle.mainBundle objectForInfoDictionaryKey:toNative(key)];
    if (value == nil) {
        return {};
    }
    if ([value isKindOfClass:[NSString class]]) {
        return fromNative(static_cast<NSString*>(value));
    }
    if ([value isKindOfClass:[NSNumber class]]) {
        return [static_cast<NSNumber*>(value) doubleValue];
    }
    return QVariantMap();
}

QString MacBundle::identifier() const {
    return applicationIdentifier(fromNative(NSBundle.mainBundle.bundleIdentifier));
}

} // namespace brimlet
