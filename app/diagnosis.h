#pragma once

#include "overlay/notchgeometry.h"
#include "platform/linux/appledisplay.h"
#include "platform/linux/buscall.h"
#include "platform/linux/linuxworkspace.h"
#include "platform/linux/secretservicestate.h"
#include "platform/linux/x11.h"

#include <QByteArrayList>
#include <QList>
#include <QRect>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace brimlet {

struct DiagnosedScreen final {
    QString connector;
    QRect geometry; ///< In points.
    double scale = 1;
    bool isBuiltIn = false;
    std::optional<NotchMetrics> notch;
};

/// What the program depends on in the system and the desktop, as found at one moment. No secret is
/// among it, and nothing that names the user or the machine.
struct Diagnosis final {
    QString version; ///< Of the program.
    QString system;
    QString kernel;
    QString architecture;
    long pageSize = 0; ///< In bytes.
    QString qtVersion;
    QString desktop;
    QString sessionType;

    bool isWaylandDisplaySet = false;
    bool isWaylandConnected = false;
    std::optional<std::uint32_t> layerShell; ///< The version; absent where it is not offered.
    bool isDisplaySet = false;
    std::optional<x11::Server> xServer;
    QStringList xScreens; ///< The names that the X server gives them.
    QString overlay;      ///< Which window the overlay has, and why.

    QList<DiagnosedScreen> screens; ///< Of the display server that has the overlay's window.
    QList<PanelFacts> panels;
    QByteArray model;
    QByteArrayList compatible;
    DescribedPanel describedPanel;
    std::optional<NotchedPanel> notchedPanel;
    std::optional<bool> showNotch;

    BusReply notifierHost;
    SecretServiceState secretService = SecretServiceState::NoBus;
    BusReply suspend;
    BusReply powerSaveMode;
    BusReply lockedHint;
    BusReply screenSaver;
    BusReply gnomeScreenSaver;
};

/// One fact a line. What comes from outside is cut to one line of printable text.
[[nodiscard]] QString diagnosisText(const Diagnosis& diagnosis);

} // namespace brimlet
