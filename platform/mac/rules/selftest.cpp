#include "platform/mac/rules/selftest.h"

#include "platform/mac/rules/macoverlaywindow.h"
#include "platform/secretstore.h"

#include <QPainterPath>

#include <algorithm>
#include <utility>

namespace brimlet {
namespace {

// A notch of 180 by 32 points with a capsule at each side, as the overlay places them.
constexpr double kWidth = 424;
constexpr double kHeight = 40;
constexpr QRect kLeft{20, 4, 90, 24};
constexpr QRect kRight{314, 4, 90, 24};

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

QString text(const QString& title, const QStringList& lines) {
    return title + u'\n' + QStringLiteral("  ") + lines.join(QStringLiteral("\n  ")) + u'\n';
}

QString text(const ClickFact& click) {
    const auto taker = [](bool isOverlay) {
        return isOverlay ? QStringLiteral("taken") : QStringLiteral("let through");
    };
    const QString line = click.place + u' ' + taker(click.isFound);
    return click.isFound == click.isWanted
               ? line
               : QStringLiteral("%1  WRONG, should be %2").arg(line, taker(click.isWanted));
}

/// The line of something that is there, or ought to be.
QString text(const char* name, bool isThere, const QString& found) {
    return QStringLiteral("%1 %2\n").arg(QLatin1StringView(name),
                                         isThere ? found : QStringLiteral("WRONG, there is none"));
}

void askClicks(const MacOverlayWindow& overlay, const Rect& frame, bool isShown,
               std::vector<ClickFact>& facts) {
    const std::pair<const char*, QPoint> capsules[] = {{"left capsule", kLeft.center()},
                                                       {"right capsule", kRight.center()}};
    const std::pair<const char*, QPoint> others[] = {
        {"notch", QPoint(212, 16)},
        {"left of the left capsule", QPoint(10, 16)},
        {"between capsule and notch", QPoint(114, 16)},
        {"right of the right capsule", QPoint(414, 16)},
        {"below the left capsule", QPoint(65, 34)}};
    const QString when = isShown ? QStringLiteral("shown, ") : QStringLiteral("hidden, ");
    const auto ask = [&](const auto& places, bool isWanted) {
        for (const auto& [name, at] : places) {
            facts.push_back(
                {when + QLatin1StringView(name), isWanted,
                 overlay.takesClickAt({frame.minX() + at.x() + 0.5, frame.maxY() - at.y() - 0.5})});
        }
    };
    ask(capsules, isShown);
    ask(others, false);
}

} // namespace

std::vector<ClickFact> tryClicks(MacOverlayWindow& overlay, const Screens& screens,
                                 const std::function<void()>& settle) {
    const auto list = screens.list();
    if (list.empty()) {
        return {};
    }
    const auto builtIn = std::find_if(list.begin(), list.end(), [&](const Screen& screen) {
        return screens.isBuiltIn(screen.number.value_or(0));
    });
    const Rect screen = (builtIn == list.end() ? list.front() : *builtIn).frame;
    const Rect frame{screen.midX() - kWidth / 2, screen.maxY() - kHeight, kWidth, kHeight};

    QPainterPath capsules;
    capsules.addRect(kLeft);
    capsules.addRect(kRight);
    overlay.setRegions(capsules, capsules);
    overlay.setFrame(frame);
    std::vector<ClickFact> facts;
    overlay.orderFrontRegardless();
    overlay.setIgnoresMouseEvents(false);
    settle();
    askClicks(overlay, frame, true, facts);
    overlay.setIgnoresMouseEvents(true);
    overlay.orderOut();
    settle();
    askClicks(overlay, frame, false, facts);
    return facts;
}

bool keepsSecrets(SecretStore& secrets) {
    const QString service = QStringLiteral("app.brimlet.host.self-test");
    const QString account = QStringLiteral("self-test");
    const auto read = [&] { return secrets.read(service, account, [](const SecretResult&) {}); };
    bool isKept = true;
    for (const char* const value : {"first", "second"}) {
        secrets.replace(service, account, QByteArray(value));
        isKept = isKept && read() == SecretResult(QByteArray(value));
    }
    secrets.replace(service, account, std::nullopt);
    return read() == SecretResult(SecretError::NotFound) && isKept;
}

SelfTest selfTest(const SelfTestFacts& facts, const Screens& screens) {
    SelfTest result;
    QString& report = result.report;
    report = text(QStringLiteral("overlay panel"), panelReport(facts.panel));
    for (const PanelFacts& panel : facts.clickPanels) {
        report +=
            text(QStringLiteral("panel over a capsule"), panelReport(panel, kClickPanelFacts));
    }
    QStringList clicks;
    for (const ClickFact& click : facts.clicks) {
        clicks << text(click);
    }
    report += text(QStringLiteral("clicks"), clicks);
    const auto list = screens.list();
    for (const Screen& screen : list) {
        report += text(screen, screens);
    }
    report += text("status item", facts.statusItem.has_value(), text(facts.statusItem));
    report += text("keychain item", facts.keepsSecrets, QStringLiteral("written, read, removed"));
    if (list.empty()) {
        report += QStringLiteral("no screens  WRONG\n");
    }
    result.isPassed = !report.contains(QStringLiteral("WRONG"));
    report += result.isPassed ? QStringLiteral("passed\n") : QStringLiteral("FAILED\n");
    return result;
}

} // namespace brimlet
