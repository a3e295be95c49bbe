#pragma once

#include <QString>

#import <Foundation/Foundation.h>

namespace brimlet {

// The same as QString::toNSString and fromNSString. Qt declares those only on a Mac, so code that
// uses them could not be parsed elsewhere.

[[nodiscard]] inline NSString* toNative(const QString& text) {
    return [NSString stringWithCharacters:reinterpret_cast<const unichar*>(text.utf16())
                                   length:static_cast<NSUInteger>(text.size())];
}

/// Empty for nil.
[[nodiscard]] inline QString fromNative(NSString* text) {
    QString copy(static_cast<qsizetype>(text.length), Qt::Uninitialized);
    [text getCharacters:reinterpret_cast<unichar*>(copy.data()) range:NSMakeRange(0, text.length)];
    return copy;
}

} // namespace brimlet
