#include "tests/support/wayland/outputs.h"

#include "client-kde-output-device-v2.h"
#include "client-kde-output-management-v2.h"
#include "tests/support/wayland/connection.h"

#include <QDBusInterface>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>
#include <QFile>
#include <QProcess>

#include <array>
#include <functional>
#include <future>

#include <unistd.h>
#include <wayland-client.h>

namespace brimlet::desktop {
namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0) {
        qFatal("%s %s failed", qPrintable(program), qPrintable(arguments.join(u' ')));
    }
    return process.readAllStandardOutput();
}

QImage kwinPicture(const QRect& area, bool withPointer) {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0) {
        qFatal("no pipe for a picture of the screen");
    }
    QFile picture;
    (void)picture.open(pipe[0], QIODevice::ReadOnly, QFile::AutoCloseHandle);
    QDBusInterface kwin(QStringLiteral("org.kde.KWin"), QStringLiteral("/org/kde/KWin/ScreenShot2"),
                        QStringLiteral("org.kde.KWin.ScreenShot2"));
    // KWin may reply only after the picture was read, and it is complete when nobody can write
    // more.
    auto reading = std::async(std::launch::async, [&picture] { return picture.readAll(); });
    QDBusReply<QVariantMap> reply;
    {
        const QDBusUnixFileDescriptor writingEnd(pipe[1]);
        ::close(pipe[1]);
        reply = kwin.call(QStringLiteral("CaptureArea"), area.x(), area.y(),
                          static_cast<uint>(area.width()), static_cast<uint>(area.height()),
                          QVariantMap{{QStringLiteral("include-cursor"), withPointer},
                                      {QStringLiteral("native-resolution"), true}},
                          QVariant::fromValue(writingEnd));
    }
    if (!reply.isValid()) {
        qFatal("KWin gives no picture: %s", qPrintable(reply.error().message()));
    }
    const QByteArray pixels = reading.get();
    const QVariantMap facts = reply.value();
    const auto number = [&facts](const char* name) {
        return facts.value(QString::fromLatin1(name)).toInt();
    };
    return QImage(reinterpret_cast<const uchar*>(pixels.constData()), number("width"),
                  number("height"), number("stride"), static_cast<QImage::Format>(number("format")))
        .convertToFormat(QImage::Format_RGB32);
}

/// The n-th output's name in sway.
QString swayName(int output) {
    return QStringLiteral("HEADLESS-%1").arg(output + 1);
}

void changeInSway(int output, const QString& change) {
    (void)outputOf(
        QStringLiteral("swaymsg"),
        QStringList{QStringLiteral("--quiet"), QStringLiteral("output"), swayName(output)} +
            change.split(u' '));
}

/// Applies one change to the n-th output in KWin.
void changeInKwin(
    int output,
    const std::function<void(kde_output_configuration_v2*, kde_output_device_v2*)>& change) {
    const Connection connection;
    auto* const management =
        connection.bind<kde_output_management_v2>(kde_output_management_v2_interface, 2);
    auto* const device = connection.bind<kde_output_device_v2>(kde_output_device_v2_interface, 2,
                                                               static_cast<std::size_t>(output));
    if (management == nullptr || device == nullptr) {
        qFatal("KWin has no output %d", output);
    }
    kde_output_configuration_v2* const configuration =
        kde_output_management_v2_create_configuration(management);
    bool isApplied = false;
    // Newer versions of the protocol have more events, which the version bound here does not send.
    kde_output_configuration_v2_listener listener{};
    listener.applied = [](void* applied, kde_output_configuration_v2*) {
        *static_cast<bool*>(applied) = true;
    };
    listener.failed = [](void*, kde_output_configuration_v2*) {};
    kde_output_configuration_v2_add_listener(configuration, &listener, &isApplied);
    change(configuration, device);
    kde_output_configuration_v2_apply(configuration);
    connection.roundtrip();
    if (!isApplied) {
        qFatal("KWin did not change output %d", output);
    }
}

} // namespace

bool canTakePictures() {
    if (!is("kwin")) {
        return true;
    }
    QDBusInterface object(QStringLiteral("org.kde.KWin"),
                          QStringLiteral("/org/kde/KWin/ScreenShot2"),
                          QStringLiteral("org.freedesktop.DBus.Introspectable"));
    // Any other failure is one of the picture.
    return object.call(QStringLiteral("Introspect")).errorName() !=
           QDBusError::errorString(QDBusError::UnknownObject);
}

QImage picture(const QRect& area, bool withPointer) {
    if (is("kwin")) {
        return kwinPicture(area, withPointer);
    }
    QStringList arguments{QStringLiteral("-g"),
                          QStringLiteral("%1,%2 %3x%4")
                              .arg(area.x())
                              .arg(area.y())
                              .arg(area.width())
                              .arg(area.height()),
                          QStringLiteral("-t"), QStringLiteral("ppm"), QStringLiteral("-")};
    if (withPointer) {
        arguments.prepend(QStringLiteral("-c"));
    }
    QProcess grim;
    grim.start(QStringLiteral("grim"), arguments);
    constexpr int kPatience = 10'000; // for the next picture of an output that is dark
    if (!grim.waitForFinished(kPatience) || grim.exitCode() != 0) {
        grim.kill();
        grim.waitForFinished();
        return {};
    }
    return QImage::fromData(grim.readAllStandardOutput()).convertToFormat(QImage::Format_RGB32);
}

void setOn(int output, bool isOn) {
    if (is("kwin")) {
        changeInKwin(output, [isOn](auto* configuration, auto* device) {
            kde_output_configuration_v2_enable(configuration, device, isOn ? 1 : 0);
        });
    } else {
        changeInSway(output, isOn ? QStringLiteral("enable") : QStringLiteral("disable"));
    }
}

void setScale(int output, double scale) {
    if (is("kwin")) {
        changeInKwin(output, [scale](auto* configuration, auto* device) {
            kde_output_configuration_v2_scale(configuration, device, wl_fixed_from_double(scale));
        });
    } else {
        changeInSway(output, QStringLiteral("scale %1").arg(scale));
    }
}

void setRotated(int output, bool isRotated) {
    if (is("kwin")) {
        changeInKwin(output, [isRotated](auto* configuration, auto* device) {
            kde_output_configuration_v2_transform(configuration, device,
                                                  isRotated ? WL_OUTPUT_TRANSFORM_90
                                                            : WL_OUTPUT_TRANSFORM_NORMAL);
        });
    } else {
        changeInSway(output, isRotated ? QStringLiteral("transform 90")
                                       : QStringLiteral("transform normal"));
    }
}

} // namespace brimlet::desktop
