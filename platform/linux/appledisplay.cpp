#include "platform/linux/appledisplay.h"

#include <QDir>
#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cmath>

namespace brimlet {
namespace {

struct Model final {
    const char* compatible;
    NotchedPanel panel;
};

// Panel sizes are the native resolutions. Only the 14-inch notch has been measured: it spans the
// columns 1328 to 1696. The other notches are estimates from it and from photographs, and may be
// some pixels off.
constexpr NotchedPanel kPro14{3024, 1964, 368, 64};
constexpr NotchedPanel kPro16{3456, 2234, 368, 64};
constexpr NotchedPanel kAir13{2560, 1664, 325, 56};
constexpr NotchedPanel kAir15{2880, 1864, 325, 56};

// The names are those of the Linux kernel's device trees for Apple silicon. The M3's panels have
// the same pixels as those before; their notches are taken to be the same, too. Newer laptops are
// absent until Linux drives their display.
constexpr std::array kModels{
    // M1 Pro and Max, M2 Pro and Max
    Model{"apple,j314s", kPro14},
    Model{"apple,j314c", kPro14},
    Model{"apple,j414s", kPro14},
    Model{"apple,j414c", kPro14},
    Model{"apple,j316s", kPro16},
    Model{"apple,j316c", kPro16},
    Model{"apple,j416s", kPro16},
    Model{"apple,j416c", kPro16},
    // M2
    Model{"apple,j413", kAir13},
    Model{"apple,j415", kAir15},
    // M3, M3 Pro and Max
    Model{"apple,j504", kPro14},
    Model{"apple,j514s", kPro14},
    Model{"apple,j514c", kPro14},
    Model{"apple,j514m", kPro14},
    Model{"apple,j516s", kPro16},
    Model{"apple,j516c", kPro16},
    Model{"apple,j516m", kPro16},
    Model{"apple,j613", kAir13},
    Model{"apple,j615", kAir15},
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

/// The first 4 KiB of the file; empty when it cannot be read.
[[nodiscard]] QByteArray readStart(const QString& path) {
    constexpr qint64 kMaxBytes = 4096;
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.read(kMaxBytes)
                                                                  : QByteArray();
}

/// A text of the device tree, which ends with a zero byte; empty when it cannot be read.
[[nodiscard]] QByteArray readText(const QString& path) {
    return readStart(path).constData();
}

/// A number of the device tree; 0 when it cannot be read.
[[nodiscard]] int readCell(const QString& path) {
    const QByteArray bytes = readStart(path);
    return bytes.size() == sizeof(quint32) ? qFromBigEndian<qint32>(bytes.constData()) : 0;
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
    // Rounding to points changes the aspect ratio by 0.002 at most, hiding the band by 0.04.
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
    // Desktops scale screens by arbitrary factors, so only ratios are used. Multiplying before
    // dividing keeps the intermediate results exact.
    const double doubledLeft = panel.width - panel.notchWidth;
    const double doubledRight = panel.width + panel.notchWidth;
    const double gapStart = doubledLeft * frame.width / (2.0 * panel.width);
    const double gapEnd = doubledRight * frame.width / (2.0 * panel.width);
    const double height = panel.notchHeight * frame.height / panel.height;
    const double bottom = frame.maxY() - height;
    return NotchStrips{{frame.x, bottom, gapStart, height},
                       {frame.x + gapEnd, bottom, frame.width - gapEnd, height}};
}

QByteArrayList readCompatible(const QString& root) {
    QByteArrayList names =
        readStart(QDir(root).filePath(QStringLiteral("proc/device-tree/compatible"))).split('\0');
    // Each name ends with a zero byte; the rest after the last one is empty or truncated.
    names.removeLast();
    return names;
}

QByteArray readModel(const QString& root) {
    return readText(QDir(root).filePath(QStringLiteral("proc/device-tree/model")));
}

DescribedPanel readDescribedPanel(const QString& root) {
    const QString tree = QDir(root).filePath(QStringLiteral("proc/device-tree"));
    const QByteArray alias = readText(tree + QStringLiteral("/aliases/dcp"));
    if (!alias.startsWith('/')) {
        return {};
    }
    const QString node = tree + QFile::decodeName(alias);
    return {readCell(node + QStringLiteral("/panel/width-mm")),
            readCell(node + QStringLiteral("/panel/height-mm")),
            readCell(node + QStringLiteral("/apple,notch-height"))};
}

std::optional<bool> readShowNotch(const QString& root) {
    for (const QString& driver : {QStringLiteral("appledrm"), QStringLiteral("apple_dcp")}) {
        const QByteArray value =
            readStart(QDir(root).filePath(
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
