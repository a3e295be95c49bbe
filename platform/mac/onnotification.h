#pragma once

#import <Foundation/Foundation.h>

#include <QScopeGuard>

#include <functional>

namespace brimlet {

/// Calls the block on the main thread at each notification, until the result is destroyed. With a
/// nil `sender`, notifications from all objects count.
[[nodiscard]] inline QScopeGuard<std::function<void()>>
onNotification(NSNotificationCenter* center, NSNotificationName name, id sender,
               const std::function<void()>& block) {
    const std::function<void()> copy = block; // an Objective-C block would capture the reference
    id token = [center addObserverForName:name
                                   object:sender
                                    queue:NSOperationQueue.mainQueue
                               usingBlock:^(NSNotification*) {
                                 copy();
                               }];
    return QScopeGuard<std::function<void()>>([center, token] { [center removeObserver:token]; });
}

} // namespace brimlet
