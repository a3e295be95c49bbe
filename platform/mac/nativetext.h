#pragma once

#include <QString>

#import <Foundation/Foundation.h>

namespace brimlet {

// The same as QString::toNSString and fromNSString. Qt declares those only on a Mac, so code that
// uses them could not be parsed elsewhere.

[[nodiscard]] NSString* toNative(const QString& text);

/// Empty for nil.
[[nodiscard]] QString fromNative(NSString* text);

} // namespace brimlet
