#include "platform/linux/appledisplay.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <array>
#include <cmath>

namespace brimlet {
namespace {

struct Model final {
    const char* compatible;
    NotchedPanel panel;
};

// The notch of the 14-inch is known to lie at 1328 to 1696, which is the middle. The others are
// derived from it and from pictures.
constexpr NotchedPanel kPro14{3024, 1964, 368, 64};
constexpr NotchedPanel kPro16{3456, 2234, 368, 64};
constexpr NotchedPanel kAir13{2560, 1664, 325, 56};
constexpr NotchedPanel kAir15{2880, 1864, 325, 56};

constexpr std::array kModels{
    Model{"apple,j314s", kPro14}, Model{"apple,j314c", kPro14}, Model{"apple,j414s", kPro14},
    Model{"apple,j414c", kPro14}, Model{"apple,j316s", kPro16}, Model{"apple,j316c", kPro16},
    Model{"apple,j416s", kPro16}, Model{"apple,j416c", kPro16}, Model{"apple,j413", kAir13},
    Model{"apple,j415", kAir15},
};

[[nodiscard]] bool mayBePanel(const QString& connector) {
    constexpr QLatin1StringView kXWayland("XWAYLAND");
    if (connector.startsWith(kXWayland)) {
        const QStringView number = QStringView(connector).mid(kXWayland.size());
        return !number.isEmpty() && std::all_of(number.begin(), number.end(), [](QChar character) {
            return character >= u'0' && character <= u'9';
        });
    }
    return connector.startsWith(QLatin1StringView("eDP"));
}

/// What the file begins with; empty when it cannot be read.
[[nodiscard]] QByteArray beginning(const QString& path) {
    constexpr qint64 kEnough = 4096;
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.read(kEnough)
                                                                  : QByteArray();
}

} // namespace

std::optional<NotchedPanel> notchedPanel(const QByteArrayList& compatible) {
    for (const QByteArray& name : compatible) {
        const auto* const model =
            std::find_if(kModels.begin(), kModels.end(),
                         [&](const Model& known) { return known.compatible == name; });
        if (model != kModels.end()) {
            return model->panel;
        }
    }
    return std::nullopt;
}

bool showsBand(const NotchedPanel& panel, const QString& connector, const Rect& frame) {
    // Rounding to points moves the ratio of the sides by two thousandths at most; without the band
    // it is greater by four hundredths.
    constexpr double kTolerance = 0.01;
    const double whole = static_cast<double>(panel.width) / panel.height;
    return mayBePanel(connector) && frame.width > 0 && frame.height > 0 &&
           std::abs(frame.width / frame.height / whole - 1) <= kTolerance;
}

std::optional<NotchStrips> notchStrips(const NotchedPanel& panel, std::optional<bool> showNotch,
                                       const QString& connector, const Rect& frame) {
    if (!showNotch.value_or(true) || !showsBand(panel, connector, frame)) {
        return std::nullopt;
    }
    // A desktop may scale its screens by anything, so only ratios count. Products come first, since
    // they are exact.
    const double doubledLeft = panel.width - panel.notchWidth;
    const double doubledRight = panel.width + panel.notchWidth;
    const double gapStart = std::floor(doubledLeft * frame.width / (2.0 * panel.width));
    const double gapEnd = std::ceil(doubledRight * frame.width / (2.0 * panel.width));
    const double height = std::ceil(panel.notchHeight * frame.height / panel.height);
    const double bottom = frame.maxY() - height;
    return NotchStrips{{frame.x, bottom, gapStart, height},
                       {frame.x + gapEnd, bottom, frame.width - gapEnd, height}};
}

QByteArrayList readCompatible(const QString& root) {
    QByteArrayList names =
        beginning(QDir(root).filePath(QStringLiteral("proc/device-tree/compatible"))).split('\0');
    // Each name ends with a zero byte; what follows the last one is cut off or none.
    names.removeLast();
    return names;
}

std::optional<bool> readShowNotch(const QString& root) {
    for (const QString& driver : {QStringLiteral("appledrm"), QStringLiteral("apple_dcp")}) {
        const QByteArray value =
            beginning(QDir(root).filePath(
                          QStringLiteral("sys/module/%1/parameters/show_notch").arg(driver)))
                .trimmed();
        if (value == "1" || value == "Y" || value == "y") {
            return true;
        }
        if (value == "0" || value == "N" || value == "n") {
            return false;
        }
    }
    return std::nullopt;
}

} // namespace brimlet
