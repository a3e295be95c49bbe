#pragma once

#include "tests/support/testpaths.h"

#include <QProcess>

/// The compositor of the private Wayland desktop: see tests/support/session/compositor.
namespace brimlet::Compositor {

[[nodiscard]] inline bool run(const char* verb) {
    return QProcess::execute(sourcePath(u"tests/support/session/compositor"),
                             {QString::fromLatin1(verb)}) == 0;
}
[[nodiscard]] inline bool crash() {
    return run("crash");
}
[[nodiscard]] inline bool start() {
    return run("start");
}

} // namespace brimlet::Compositor
