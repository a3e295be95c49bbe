#pragma once

#include "tests/support/testpaths.h"

#include <QProcess>

/// The compositor of the private Wayland desktop: see tests/support/session/compositor.
namespace brimlet::desktop {

[[nodiscard]] inline bool runCompositor(const char* verb) {
    return QProcess::execute(sourcePath(u"tests/support/session/compositor"),
                             {QString::fromLatin1(verb)}) == 0;
}
[[nodiscard]] inline bool crashCompositor() {
    return runCompositor("crash");
}
[[nodiscard]] inline bool startCompositor() {
    return runCompositor("start");
}

} // namespace brimlet::desktop
