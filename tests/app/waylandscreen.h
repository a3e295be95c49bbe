#pragma once

#include "tests/support/clearlook.h"
#include "tests/support/processes.h"
#include "tests/support/referencepictures.h"
#include "tests/support/testpaths.h"
#include "tests/support/wayland/outputs.h"

#include <QDir>
#include <QJsonArray>
#include <QTest>

/// The simulated program on the screen of a private Wayland desktop.
namespace brimlet::WaylandScreen {

inline constexpr int kPatience = 15'000;
// In points of the 14-inch machine's screen.
inline constexpr QRect kPanel(542, 0, 428, 40);
inline constexpr QPoint kInLeftCapsule(555, 13);
inline constexpr QPoint kLeftCapsule(542 + 8 + 54, 13);
inline constexpr QPoint kRightCapsule(542 + 312 + 54, 13);
/// Behind the capsules, as in the reference pictures.
inline const QColor kBackground(160, 160, 160);

/// The compositor's scale at the start.
inline double scale() {
    const double scale = qEnvironmentVariable("BRIMLET_SESSION_SCALE").toDouble();
    return scale > 0 ? scale : 1;
}

inline bool isAbout(const QColor& a, const QColor& b) {
    return qAbs(a.red() - b.red()) < 16 && qAbs(a.green() - b.green()) < 16 &&
           qAbs(a.blue() - b.blue()) < 16;
}

/// The pixel at the top left corner of that point.
inline QColor pixel(QPoint point) {
    return desktop::picture({point, QSize(2, 2)}).pixelColor(0, 0);
}
/// Whether the left capsule is in front there, or the background.
inline bool isCapsuleInFront() {
    return pixel(kInLeftCapsule).lightness() < 40;
}
inline bool isBackgroundInFront() {
    return isAbout(pixel(kInLeftCapsule), kBackground);
}

/// The creatives of the reference pictures without marks.
inline QJsonArray referenceCreatives() {
    const auto creative = [](const char* slot, const char* brand, const char* page) {
        return QJsonObject{{QStringLiteral("slotId"), QString::fromLatin1(slot)},
                           {QStringLiteral("brandName"), QString::fromLatin1(brand)},
                           {QStringLiteral("brandUrl"), QString::fromLatin1(page)}};
    };
    return {creative("left", "Quiet Bicycle", "https://left.test/"),
            creative("right", "Palindrome", "https://www.another-brand.test/page")};
}

/// Whether the two capsules over the background look like the reference picture.
inline bool looksLikeTheReference(double scale) {
    const QString file = QStringLiteral("fallback-%1x.png").arg(scale);
    const QImage reference =
        QImage(referenceFolder().filePath(file)).convertToFormat(QImage::Format_RGB32);
    return !reference.isNull() && looksTheSame(desktop::picture(kPanel), reference);
}

/// The simulated program, at ten times the speed, with its part of the Wayland protocol in its
/// complaints.
class Program final {
public:
    explicit Program(const PlacementProcess& service)
        : m_process({{QStringLiteral("infoDictionary"),
                      QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
                     {QStringLiteral("drawNotch"), false},
                     {QStringLiteral("speed"), 10}},
                    {{QStringLiteral("WAYLAND_DEBUG"), QStringLiteral("client")}}) {}

    SimulatorProcess* operator->() { return &m_process; }
    /// What compositors have complained about so far.
    [[nodiscard]] QByteArrayList protocolErrors() {
        QByteArrayList lines = m_process.complaints().split('\n');
        // Newer versions of the library write a number sign.
        lines.removeIf([](const QByteArray& line) {
            return !line.contains("wl_display@1.error") && !line.contains("wl_display#1.error");
        });
        return lines;
    }
    /// Whether the compositor has shown the last picture so far.
    [[nodiscard]] bool isShown() {
        const QByteArray said = m_process.complaints();
        const QByteArray request = ".frame(new id wl_callback";
        const qsizetype from = said.lastIndexOf(request) + request.size();
        const QByteArray callback = said.mid(from, said.indexOf(')', from) - from);
        return said.contains(request) && said.indexOf("wl_callback" + callback + ".done", from) > 0;
    }
    /// Whether it draws over a connection of its own to the compositor.
    [[nodiscard]] bool isNative() { return m_process.complaints().contains(".get_layer_surface("); }

private:
    SimulatorProcess m_process;
};

} // namespace brimlet::WaylandScreen
