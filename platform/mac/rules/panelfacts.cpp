#include "platform/mac/rules/panelfacts.h"

namespace brimlet {
namespace {

QString text(bool value) {
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

QString text(long value) {
    return QString::number(value);
}

QString text(unsigned long value) {
    return QStringLiteral("0x%1").arg(value, 0, 16);
}

template <typename T>
QString line(const char* name, T found, T wanted) {
    const QString fact = QStringLiteral("%1 %2").arg(QLatin1StringView(name), text(found));
    return found == wanted ? fact
                           : QStringLiteral("%1  WRONG, should be %2").arg(fact, text(wanted));
}

} // namespace

QStringList panelReport(const PanelFacts& found, const PanelFacts& wanted) {
    return {line("styleMask", found.styleMask, wanted.styleMask),
            line("collectionBehavior", found.collectionBehavior, wanted.collectionBehavior),
            line("level", found.level, wanted.level),
            line("floatingPanel", found.isFloatingPanel, wanted.isFloatingPanel),
            line("opaque", found.isOpaque, wanted.isOpaque),
            line("clear background", found.hasClearBackground, wanted.hasClearBackground),
            line("hasShadow", found.hasShadow, wanted.hasShadow),
            line("hidesOnDeactivate", found.hidesOnDeactivate, wanted.hidesOnDeactivate),
            line("canHide", found.canHide, wanted.canHide),
            line("canBecomeKeyWindow", found.canBecomeKey, wanted.canBecomeKey),
            line("canBecomeMainWindow", found.canBecomeMain, wanted.canBecomeMain),
            line("ignoresMouseEvents", found.ignoresMouseEvents, wanted.ignoresMouseEvents),
            line("allowsToolTipsWhenApplicationIsInactive", found.allowsToolTipsWhenInactive,
                 wanted.allowsToolTipsWhenInactive)};
}

} // namespace brimlet
