#pragma once

#include "tests/support/testpaths.h"

#include <QDir>
#include <QFont>
#include <QRawFont>
#include <QtEndian>

namespace brimlet {

/// The folder of the overlay's reference pictures for the installed version of their font, Inter:
/// its letters have other shapes and widths since 4.0.
inline QDir referenceFolder() {
    const QByteArray head = QRawFont::fromFont(QFont(QStringLiteral("Inter"))).fontTable("head");
    constexpr qsizetype kRevision = 4; // where it is, 16 bits each for the numbers beside the dot
    const bool isNewer =
        head.size() >= kRevision + 2 && qFromBigEndian<quint16>(head.constData() + kRevision) >= 4;
    return QDir(sourcePath(isNewer ? u"tests/overlay/reference/inter-4"
                                   : u"tests/overlay/reference/inter-3"));
}

} // namespace brimlet
