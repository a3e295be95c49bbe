#pragma once

#include "tests/support/testpaths.h"

#include <QDir>
#include <QProcess>

namespace brimlet {

/// The folder of the overlay's reference pictures for the installed version of their font, Inter:
/// its letters have other shapes and widths since 4.0.
inline QDir referenceFolder() {
    static const bool isNewer = [] {
        QProcess fontconfig;
        fontconfig.start(
            QStringLiteral("fc-match"),
            {QStringLiteral("-f"), QStringLiteral("%{fontversion}"), QStringLiteral("Inter")});
        constexpr int kFour = 0x40000; // 16 bits each for the numbers beside the dot
        return fontconfig.waitForFinished() && fontconfig.readAll().toInt() >= kFour;
    }();
    return QDir(sourcePath(isNewer ? u"tests/overlay/reference/inter-4"
                                   : u"tests/overlay/reference/inter-3"));
}

} // namespace brimlet
