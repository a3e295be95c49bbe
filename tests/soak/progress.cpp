#include "tests/soak/progress.h"

#include <QDateTime>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

namespace brimlet {

void printProgress(const QString& text) {
    std::fprintf(stderr, "brimlet-soak: %s\n", qUtf8Printable(text));
}

qint64 realTime() {
    return QDateTime::currentMSecsSinceEpoch();
}

void sleepUntil(qint64 time) {
    std::this_thread::sleep_for(std::chrono::milliseconds(std::max(time - realTime(), qint64{0})));
}

} // namespace brimlet
