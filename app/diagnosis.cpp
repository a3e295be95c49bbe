#include "app/diagnosis.h"

#include <QStringList>

#include <algorithm>

namespace brimlet {
namespace {

using Outcome = BusReply::Outcome;

/// Text from outside.
[[nodiscard]] QString oneLine(QString text) {
    constexpr qsizetype kLongest = 200;
    std::replace_if(
        text.begin(), text.end(), [](QChar character) { return !character.isPrint(); }, u' ');
    text = text.simplified().left(kLongest);
    return text.isEmpty() ? QStringLiteral("unknown") : text;
}

[[nodiscard]] QString oneLine(const QByteArray& text) {
    return oneLine(QString::fromUtf8(text));
}

[[nodiscard]] QString size(int width, int height) {
    return QStringLiteral("%1 x %2").arg(width).arg(height);
}

/// The shape that the rule for the notch compares.
[[nodiscard]] QString ratio(int width, int height) {
    return height > 0 ? QString::number(double(width) / height, 'f', 4) : QStringLiteral("unknown");
}

[[nodiscard]] QString xServerText(const Diagnosis& facts) {
    if (!facts.xServer) {
        return facts.isDisplaySet ? QStringLiteral("DISPLAY is set, but not connected")
                                  : QStringLiteral("DISPLAY is not set");
    }
    const x11::Server& server = *facts.xServer;
    const bool isXWayland = x11::isXWayland(server, facts.xScreens);
    const QString kind = isXWayland ? QStringLiteral("XWayland") : QStringLiteral("X server");
    const QString version = isXWayland || server.vendor == u"The X.Org Foundation"
                                ? u' ' + x11::versionOf(server.release)
                                : QString();
    const QString lack = x11::ignoresInputShapes(server, facts.xScreens)
                             ? QStringLiteral(", ignores input shapes")
                             : QString();
    return QStringLiteral("%1%2 (%3, release %4)%5")
        .arg(kind, version, oneLine(server.vendor), QString::number(server.release), lack);
}

[[nodiscard]] QString waylandText(const Diagnosis& facts) {
    if (!facts.isWaylandDisplaySet) {
        return QStringLiteral("WAYLAND_DISPLAY is not set");
    }
    return facts.isWaylandConnected ? QStringLiteral("connected")
                                    : QStringLiteral("WAYLAND_DISPLAY is set, but not connected");
}

[[nodiscard]] QString layerShellText(const Diagnosis& facts) {
    if (facts.layerShell) {
        return QStringLiteral("version %1").arg(*facts.layerShell);
    }
    return facts.isWaylandConnected ? QStringLiteral("not offered") : QStringLiteral("unknown");
}

[[nodiscard]] QString screenText(const DiagnosedScreen& screen) {
    return QStringLiteral("%1, %2 points at %3,%4, scale %5, ratio %6%7")
        .arg(oneLine(screen.connector), size(screen.geometry.width(), screen.geometry.height()))
        .arg(screen.geometry.x())
        .arg(screen.geometry.y())
        .arg(screen.scale)
        .arg(ratio(screen.geometry.width(), screen.geometry.height()))
        .arg(screen.isBuiltIn ? QStringLiteral(", built in") : QString());
}

[[nodiscard]] QString panelText(const PanelFacts& panel) {
    return QStringLiteral("%1, status %2, %3 pixels, power %4")
        .arg(oneLine(panel.connector), oneLine(panel.status), oneLine(panel.mode),
             oneLine(panel.power));
}

[[nodiscard]] QString compatibleText(const QByteArrayList& compatible) {
    return compatible.isEmpty() ? QStringLiteral("no device tree") : oneLine(compatible.join(' '));
}

[[nodiscard]] QString describedPanelText(const DescribedPanel& panel) {
    if (panel == DescribedPanel()) {
        return QStringLiteral("not described");
    }
    return QStringLiteral("%1 mm, band of %2 pixels")
        .arg(size(panel.widthMm, panel.heightMm))
        .arg(panel.bandHeight);
}

[[nodiscard]] QString showNotchText(std::optional<bool> showNotch) {
    if (!showNotch) {
        return QStringLiteral("no such setting");
    }
    return *showNotch ? QStringLiteral("on") : QStringLiteral("off");
}

[[nodiscard]] QString notchText(const Diagnosis& facts) {
    for (const DiagnosedScreen& screen : facts.screens) {
        if (screen.notch) {
            return QStringLiteral("%1, %2 x %3 points, from the table of models")
                .arg(oneLine(screen.connector))
                .arg(screen.notch->width)
                .arg(screen.notch->height);
        }
    }
    if (!facts.notchedPanel) {
        return facts.compatible.isEmpty()
                   ? QStringLiteral("none, because no device tree names the model")
                   : QStringLiteral("none, because the model is not in the table");
    }
    if (facts.screens.isEmpty()) {
        return QStringLiteral("unknown, because no screen can be measured");
    }
    if (!facts.showNotch.value_or(true)) {
        return QStringLiteral("none, because show_notch is off");
    }
    const auto& [width, height, notchWidth, notchHeight] = *facts.notchedPanel;
    return QStringLiteral(
               "none, because no built-in screen has the shape of the panel, %1 pixels, ratio %2")
        .arg(size(width, height), ratio(width, height));
}

/// How a call failed; empty if it was answered.
[[nodiscard]] QString failureText(Outcome outcome) {
    switch (outcome) {
    case Outcome::NoBus:
        return QStringLiteral("no bus that answers");
    case Outcome::NoService:
        return QStringLiteral("not running");
    case Outcome::NoAnswer:
        return QStringLiteral("no answer");
    case Outcome::Refused:
        return QStringLiteral("answers with an error");
    case Outcome::Answered:
        break;
    }
    return {};
}

[[nodiscard]] QString replyText(const BusReply& reply, const QString& answer) {
    return reply.outcome == Outcome::Answered ? answer : failureText(reply.outcome);
}

[[nodiscard]] QString yesOrNo(bool isSo) {
    return isSo ? QStringLiteral("yes") : QStringLiteral("no");
}

[[nodiscard]] QString secretServiceText(SecretServiceState state) {
    switch (state) {
    case SecretServiceState::NoBus:
        return failureText(Outcome::NoBus);
    case SecretServiceState::Absent:
        return failureText(Outcome::NoService);
    case SecretServiceState::NotStarted:
        return QStringLiteral("not running, started when it is needed");
    case SecretServiceState::NoAnswer:
        return failureText(Outcome::NoAnswer);
    case SecretServiceState::Failed:
        return failureText(Outcome::Refused);
    case SecretServiceState::NoCollection:
        return QStringLiteral("has no default collection");
    case SecretServiceState::Locked:
        return QStringLiteral("locked");
    case SecretServiceState::Unlocked:
        break;
    }
    return QStringLiteral("unlocked");
}

/// The lines "name: value".
class Lines final {
public:
    void add(QLatin1StringView name, const QString& value) {
        m_text += name + QStringLiteral(": ") + value + u'\n';
    }
    [[nodiscard]] const QString& text() const { return m_text; }

private:
    QString m_text;
};

void addScreens(Lines& lines, const Diagnosis& facts) {
    for (const DiagnosedScreen& screen : facts.screens) {
        lines.add(QLatin1StringView("Screen"), screenText(screen));
    }
    if (facts.screens.isEmpty()) {
        lines.add(QLatin1StringView("Screen"), QStringLiteral("unknown"));
    }
    for (const PanelFacts& panel : facts.panels) {
        lines.add(QLatin1StringView("Built-in panel"), panelText(panel));
    }
    if (facts.panels.isEmpty()) {
        lines.add(QLatin1StringView("Built-in panel"), QStringLiteral("none"));
    }
}

} // namespace

QString diagnosisText(const Diagnosis& facts) {
    Lines lines;
    const auto add = [&lines](const char* name, const QString& value) {
        lines.add(QLatin1StringView(name), value);
    };
    add("Brimlet", facts.version);
    add("System", oneLine(facts.system));
    add("Kernel", oneLine(facts.kernel));
    add("Architecture", oneLine(facts.architecture));
    add("Page size", QStringLiteral("%1 bytes").arg(facts.pageSize));
    add("Qt", facts.qtVersion);
    add("Desktop", oneLine(facts.desktop));
    add("Session type", oneLine(facts.sessionType));
    add("Wayland", waylandText(facts));
    add("Layer shell", layerShellText(facts));
    add("X11", xServerText(facts));
    if (facts.xServer) {
        add("X11 compositor", yesOrNo(facts.xServer->hasCompositor));
    }
    add("Overlay", facts.overlay);
    addScreens(lines, facts);
    add("Model", oneLine(facts.model));
    add("Device tree", compatibleText(facts.compatible));
    add("Panel in the device tree", describedPanelText(facts.describedPanel));
    add("show_notch", showNotchText(facts.showNotch));
    add("Notch", notchText(facts));
    add("StatusNotifier tray", replyText(facts.notifierHost, facts.notifierHost.value.toBool()
                                                                 ? QStringLiteral("yes")
                                                                 : QStringLiteral("no host")));
    if (facts.xServer) {
        add("XEmbed tray", yesOrNo(facts.xServer->hasTray));
    }
    add("Secret service", secretServiceText(facts.secretService));
    add("Suspend, logind", replyText(facts.suspend, QStringLiteral("answers")));
    add("Power save mode, Mutter",
        replyText(facts.powerSaveMode, oneLine(facts.powerSaveMode.value.toString())));
    const auto addLock = [&](const char* name, const BusReply& reply) {
        add(name, replyText(reply, yesOrNo(reply.value.toBool())));
    };
    addLock("Session locked, logind", facts.lockedHint);
    addLock("Session locked, screen saver", facts.screenSaver);
    addLock("Session locked, GNOME", facts.gnomeScreenSaver);
    return lines.text();
}

} // namespace brimlet
