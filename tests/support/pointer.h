#pragma once

#include <QPoint>
#include <QProcess>
#include <QStringList>

/// Pointer and keyboard input, by xdotool. Positions are in pixels of the X server.
namespace brimlet {

/// Ends the test program when xdotool fails. Returns before the program has reacted.
inline void xdotool(const QStringList& arguments) {
    if (QProcess::execute(QStringLiteral("xdotool"), arguments) != 0) {
        qFatal("xdotool %s failed", qPrintable(arguments.join(u' ')));
    }
}

inline void moveTo(QPoint position) {
    xdotool({QStringLiteral("mousemove"), QString::number(position.x()),
             QString::number(position.y())});
}

/// With the left button.
inline void click(QPoint position) {
    xdotool({QStringLiteral("mousemove"), QString::number(position.x()),
             QString::number(position.y()), QStringLiteral("click"), QStringLiteral("1")});
}

/// Presses and releases, e.g. "Tab", "shift+Tab", "Escape", "ctrl+v".
inline void key(const char* name) {
    xdotool({QStringLiteral("key"), QString::fromLatin1(name)});
}

/// Types the text into the focused window, letter by letter. Only characters of a US keyboard:
/// others are sometimes lost.
inline void type(const char* text) {
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("0"),
             QStringLiteral("--"), QString::fromLatin1(text)});
}

} // namespace brimlet
