#pragma once

#include <QApplication>

namespace brimlet {

/// Makes the test itself a program of the Wayland desktop, but not those that it starts.
class WaylandApplication final : public QApplication {
public:
    WaylandApplication(int& argc, char** argv)
        : QApplication(onWayland(argc), argv) {
        if (m_platform.isEmpty()) {
            qunsetenv("QT_QPA_PLATFORM");
        } else {
            qputenv("QT_QPA_PLATFORM", m_platform);
        }
    }

private:
    static int& onWayland(int& argc) {
        m_platform = qgetenv("QT_QPA_PLATFORM");
        qputenv("QT_QPA_PLATFORM", "wayland");
        qputenv("QT_WAYLAND_DISABLE_WINDOWDECORATION", "1"); // which would load OpenGL
        return argc;
    }
    static inline QByteArray m_platform;
};

} // namespace brimlet
