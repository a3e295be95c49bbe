#pragma once

#include "tests/support/testpaths.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QStringList>

/// Runs tests/support/session/screen-reader, a client of the accessibility bus, with its verbs.
namespace brimlet::ScreenReader {

struct Heard final {
    int exitCode = -1;
    QByteArray output;
};

inline Heard run(const QStringList& arguments) {
    constexpr int kPatience = 15'000;
    QProcess reader;
    reader.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    reader.start(sourcePath(u"tests/support/session/screen-reader"), arguments);
    reader.waitForFinished(kPatience);
    return {reader.exitStatus() == QProcess::NormalExit ? reader.exitCode() : -1,
            reader.readAllStandardOutput()};
}

/// Whether the screen reader succeeded.
[[nodiscard]] inline bool does(const QStringList& arguments) {
    return run(arguments).exitCode == 0;
}

/// The elements it finds, one object each.
[[nodiscard]] inline QList<QJsonObject> elements(const QStringList& arguments) {
    QList<QJsonObject> elements;
    for (const QByteArray& line : run(arguments).output.split('\n')) {
        const QJsonObject element = QJsonDocument::fromJson(line).object();
        if (!element.isEmpty()) {
            elements << element;
        }
    }
    return elements;
}

} // namespace brimlet::ScreenReader
