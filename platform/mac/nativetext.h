#pragma once

#include <QString>

#import <Foundation/Foundation.h>

namespace brimlet {

// As QString::toNSString and its like, which Qt has on a Mac alone, where the code that uses them
// would have to be read.

[[nodiscard]] NSString* toNative(const QString& text);

/// Empty for nil.
[[nodiscard]] QString fromNative(NSString* text);

} // namespace brimlet
