#pragma once

#include <QPoint>
#include <QProcess>
#include <QStringList>

/// What a person does with the pointer and the keyboard. Positions are pixels of the X server.
namespace brimlet {

/// Ends the test when it cannot be done. The program's answer is yet to be waited for.
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

/// Whatever has the keyboard gets the text letter by letter. Only what a US keyboard has: other
/// letters get lost now and then.
inline void type(const char* text) {
    xdotool({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("0"),
             QStringLiteral("--"), QString::fromLatin1(text)});
}

} // namespace brimlet
