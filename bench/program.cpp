// Runs the simulated program beside the placement service in the present X session and measures
// it: from start to capsules on screen, several times, then a while at rest.
//   bench-program FOLDER_WITH_PROGRAMS MACHINE_FILE [SECONDS]

#include "bench/processfigures.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

#include <xcb/xcb.h>

namespace {

using namespace brimlet;

[[noreturn]] void giveUp(const char* why) {
    std::fprintf(stderr, "bench-program: %s\n", why);
    std::exit(1);
}

/// Looks at single pixels of the screen as they are shown.
class Screenshots final {
public:
    Screenshots()
        : m_connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(m_connection.get()) != 0) {
            giveUp("there is no X server");
        }
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get())).data->root;
    }

    [[nodiscard]] bool isDark(std::int16_t x, std::int16_t y) const {
        const auto cookie = xcb_get_image(m_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, x,
                                          y, 1, 1, ~std::uint32_t{0});
        const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
            xcb_get_image_reply(m_connection.get(), cookie, nullptr), &std::free);
        if (!reply) {
            return false;
        }
        const std::uint8_t* const pixel = xcb_get_image_data(reply.get());
        return pixel[0] < 40 && pixel[1] < 40 && pixel[2] < 40;
    }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    xcb_window_t m_root = 0;
};

/// Starts the placement service on a free port and returns its root.
QString startService(QProcess& service, const QString& folder) {
    service.start(folder + QStringLiteral("/brimlet-placement"),
                  {QStringLiteral("--port"), QStringLiteral("0")});
    while (service.waitForReadyRead(10'000)) {
        while (service.canReadLine()) {
            const QString line = QString::fromUtf8(service.readLine()).trimmed();
            if (line.startsWith(u"Listening on ")) {
                return line.mid(13);
            }
        }
    }
    giveUp("the placement service did not start");
}

QString machineFor(const QString& root, const QString& file, const QTemporaryDir& folder) {
    QFile in(file);
    if (!in.open(QIODevice::ReadOnly)) {
        giveUp("the machine file cannot be read");
    }
    QJsonObject machine = QJsonDocument::fromJson(in.readAll()).object();
    machine[QStringLiteral("infoDictionary")] =
        QJsonObject{{QStringLiteral("BrimletAPIURL"), root}};
    QFile out(folder.filePath(QStringLiteral("machine.json")));
    if (!out.open(QIODevice::WriteOnly) || out.write(QJsonDocument(machine).toJson()) < 0) {
        giveUp("no machine file can be written");
    }
    return out.fileName();
}

/// Ten pixels into the left capsule of the 14-inch machine, before its text.
constexpr std::int16_t kCapsuleX = 542 + 8 + 5;
constexpr std::int16_t kCapsuleY = 13;

/// Milliseconds from the start of the program to the first capsule that can be seen.
double startToCapsules(QProcess& program, const QString& path, const QString& machine,
                       const Screenshots& screen) {
    QElapsedTimer watch;
    watch.start();
    program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    program.start(path, {QStringLiteral("--machine"), machine});
    while (!screen.isDark(kCapsuleX, kCapsuleY)) {
        if (watch.elapsed() > 20'000) {
            giveUp("no capsule within 20 seconds");
        }
    }
    return static_cast<double>(watch.nsecsElapsed()) / 1e6;
}

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    if (argc < 3) {
        std::fputs("usage: bench-program FOLDER_WITH_PROGRAMS MACHINE_FILE [SECONDS]\n", stderr);
        return 2;
    }
    const QString folder = QString::fromLocal8Bit(argv[1]);
    const int seconds = argc > 3 ? std::max(1, std::atoi(argv[3])) : 60;
    const QTemporaryDir scratch;
    const Screenshots screen;
    QProcess service;
    const QString root = startService(service, folder);
    const QString machine = machineFor(root, QString::fromLocal8Bit(argv[2]), scratch);
    const QString path = folder + QStringLiteral("/brimlet-simulator");

    constexpr int kStarts = 5;
    std::vector<double> starts;
    QProcess program;
    for (int i = 0; i < kStarts; ++i) {
        starts.push_back(startToCapsules(program, path, machine, screen));
        if (i + 1 < kStarts) {
            program.terminate();
            program.waitForFinished();
            while (screen.isDark(kCapsuleX, kCapsuleY)) {
            }
        }
    }
    std::sort(starts.begin(), starts.end());

    // The figures of a while at rest begin after the start's own work is done.
    program.waitForFinished(5'000);
    const ProcessFigures before = readProcessFigures(static_cast<pid_t>(program.processId()));
    program.waitForFinished(seconds * 1000);
    const ProcessFigures after = readProcessFigures(static_cast<pid_t>(program.processId()));
    if (program.state() != QProcess::Running) {
        giveUp("the program ended by itself");
    }
    const double minutes = seconds / 60.0;
    std::printf("start to capsules, median of %d: %.0f ms (%.0f to %.0f)\n", kStarts,
                starts[kStarts / 2], starts.front(), starts.back());
    std::printf("PSS %.1f MiB, USS %.1f MiB, private dirty %.1f MiB, threads %d\n",
                static_cast<double>(after.pssKib) / 1024, static_cast<double>(after.ussKib) / 1024,
                static_cast<double>(after.privateDirtyKib) / 1024, after.threads);
    std::printf("over %d s, polling: CPU %.0f ms per minute, %.2f context switches per second\n",
                seconds, (after.cpuMilliseconds - before.cpuMilliseconds) / minutes,
                static_cast<double>(after.contextSwitches - before.contextSwitches) / seconds);
    program.terminate();
    program.waitForFinished();
    service.terminate();
    service.waitForFinished();
    return 0;
}
