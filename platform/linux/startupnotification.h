#pragma once

#include <QByteArray>
#include <QVariantMap>

namespace brimlet {

// Desktops show a busy pointer from the moment at which they start a program, or ask a running one
// to act, until it reports that it has done so. They identify what they wait for by an id, which on
// Wayland is also the activation token. Main thread only.

/// Removes the id from the environment, so that programs started by this one do not take it for
/// theirs, and returns it; empty without one. Qt leaves the token of a click on the status item
/// there, and on Wayland takes it from there when it activates a window.
[[nodiscard]] QByteArray takeStartupId();

/// Puts the id where `takeStartupId()` and Qt find it, unless it is empty.
void leaveStartupId(const QByteArray& id);

/// The id in a call of the desktop's Application interface; empty without one.
[[nodiscard]] QByteArray startupIdIn(const QVariantMap& platformData);

/// Reports to the window manager that nothing more is to be expected. Does nothing with an empty id
/// or one of more than 1024 bytes, and on other Qt platforms than X11.
void completeStartup(const QByteArray& id);

} // namespace brimlet
