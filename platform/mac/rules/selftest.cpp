#include "platform/mac/rules/selftest.h"

namespace brimlet {
namespace {

QString text(const Rect& rect) {
    return QStringLiteral("%1 x %2 at %3, %4")
        .arg(rect.width)
        .arg(rect.height)
        .arg(rect.x)
        .arg(rect.y);
}

QString text(const std::optional<Rect>& rect) {
    return rect ? text(*rect) : QStringLiteral("none");
}

QString text(const Screen& screen, const Screens& screens) {
    const QString number =
        screen.number ? QString::number(*screen.number) : QStringLiteral("without number");
    const bool isBuiltIn = screens.isBuiltIn(screen.number.value_or(0));
    return QStringLiteral("screen %1%2\n  frame %3\n  left of the notch %4\n  right of it %5\n")
        .arg(number, isBuiltIn ? QStringLiteral(", built in") : QString(), text(screen.frame),
             text(screen.auxiliaryTopLeftArea), text(screen.auxiliaryTopRightArea));
}

} // namespace

SelfTest selfTest(const PanelFacts& panel, const Screens& screens) {
    SelfTest result;
    result.report = QStringLiteral("overlay panel\n");
    for (const QString& line : panelReport(panel)) {
        result.report += QStringLiteral("  %1\n").arg(line);
    }
    const auto list = screens.list();
    for (const Screen& screen : list) {
        result.report += text(screen, screens);
    }
    if (list.empty()) {
        result.report += QStringLiteral("no screens  WRONG\n");
    }
    result.isPassed = panel == PanelFacts{} && !list.empty();
    result.report += result.isPassed ? QStringLiteral("passed\n") : QStringLiteral("FAILED\n");
    return result;
}

} // namespace brimlet
