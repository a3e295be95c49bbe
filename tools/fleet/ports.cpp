#include "tools/fleet/ports.h"

namespace brimlet::fleet {
namespace {

constexpr std::uint32_t kDisplayNumber = 1;

} // namespace

std::vector<Screen> NotchedScreens::list() const {
    Screen screen;
    screen.number = kDisplayNumber;
    screen.frame = {0, 0, 1512, 982};
    screen.auxiliaryTopLeftArea = Rect{0, 950, 664, 32};
    screen.auxiliaryTopRightArea = Rect{848, 950, 664, 32};
    return {screen};
}

bool NotchedScreens::isBuiltIn(std::uint32_t displayNumber) const {
    return displayNumber == kDisplayNumber;
}

ObserverToken NotchedScreens::observeChanges(std::function<void()> /*changed*/) {
    return {};
}

ObserverToken SleeplessWorkspace::observeScreensDidSleep(std::function<void()> /*block*/) {
    return {};
}

ObserverToken SleeplessWorkspace::observeScreensDidWake(std::function<void()> /*block*/) {
    return {};
}

void SleeplessWorkspace::open(const Url& /*url*/) {}

SecretResult OneToken::read(const QString& /*service*/, const QString& /*account*/,
                            LateAnswer /*late*/) {
    return m_token.isEmpty() ? SecretResult(SecretError::NotFound) : SecretResult(m_token);
}

void OneToken::replace(const QString& /*service*/, const QString& /*account*/,
                       const std::optional<QByteArray>& value) {
    m_token = value.value_or(QByteArray());
}

QString ServiceBundle::path() const {
    return QStringLiteral("/Applications/Brimlet.app");
}

QVariant ServiceBundle::infoDictionaryValue(const QString& key) const {
    return key == u"BrimletAPIURL" ? QVariant(m_root) : QVariant();
}

QString ServiceBundle::identifier() const {
    return QStringLiteral("app.brimlet.host");
}

} // namespace brimlet::fleet
