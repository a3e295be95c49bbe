// What the program does all day, one piece at a time, with the allocations of each round: a poll
// that is read, applied and rendered, an address judged, a step of a tagline, a picture checked and
// decoded. No network and no window system.

#include <QApplication>

#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    benchmark::Initialize(&argc, argv);
    const QApplication application(argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
