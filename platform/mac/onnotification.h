#pragma once

#import <Foundation/Foundation.h>

#include <QScopeGuard>

#include <functional>

namespace brimlet {

/// Calls the block on the main thread whenever the notification comes, until the result goes. A nil
/// sender is any.
[[nodiscard]] inline QScopeGuard<std::function<void()>>
onNotification(NSNotificationCenter* center, NSNotificationName name, id sender,
               const std::function<void()>& block) {
    const std::function<void()> kept = block; // of a reference, only that would be kept
    id token = [center addObserverForName:name
                                   object:sender
                                    queue:NSOperationQueue.mainQueue
                               usingBlock:^(NSNotification*) {
                                 kept();
                               }];
    return QScopeGuard<std::function<void()>>([center, token] { [center removeObserver:token]; });
}

} // namespace brimlet
