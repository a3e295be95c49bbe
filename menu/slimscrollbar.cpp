#include "menu/slimscrollbar.h"

#include "menu/hosttheme.h"

#include <QPainter>
#include <QProxyStyle>
#include <QStyleOptionSlider>

namespace brimlet {
namespace {

/// Lays out a scroll bar without arrows, whose handle is at least 24 points long.
class SlimStyle final : public QProxyStyle {
public:
    [[nodiscard]] QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl part, const QWidget* widget) const override {
        const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || bar == nullptr) {
            return QProxyStyle::subControlRect(control, option, part, widget);
        }
        const auto* const ours = qobject_cast<const SlimScrollBar*>(widget);
        const int freeEnds = ours != nullptr ? ours->freeEnds() : 0;
        const QRect whole = bar->rect.adjusted(0, freeEnds, 0, -freeEnds);
        const qint64 content = qint64{bar->maximum} - bar->minimum + bar->pageStep;
        constexpr int kShortest = 24;
        const int length =
            qMin(whole.height(),
                 qMax(kShortest, static_cast<int>(qint64{whole.height()} * bar->pageStep /
                                                  qMax(qint64{1}, content))));
        const int start =
            whole.y() + sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                                whole.height() - length);
        switch (part) {
        case SC_ScrollBarGroove:
            return whole;
        case SC_ScrollBarSlider:
            return {whole.x(), start, whole.width(), length};
        case SC_ScrollBarSubPage:
            return {whole.x(), whole.y(), whole.width(), start - whole.y()};
        case SC_ScrollBarAddPage:
            return {whole.x(), start + length, whole.width(),
                    whole.y() + whole.height() - start - length};
        default:
            return {};
        }
    }
};

QStyle* slimStyle() {
    static auto* const style = new SlimStyle; // never deleted: widgets may outlive static objects
    return style;
}

} // namespace

SlimScrollBar::SlimScrollBar(int freeEnds)
    : QScrollBar(Qt::Vertical, nullptr)
    , m_freeEnds(freeEnds) {
    setStyle(slimStyle());
    setFixedWidth(kWidth);
}

void SlimScrollBar::setHighlighted(bool isHighlighted) {
    m_isHighlighted = isHighlighted;
    update();
}

void SlimScrollBar::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRectF handle(
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this));
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(m_isHighlighted ? HostTheme::accent() : HostTheme::faint());
    constexpr double kBar = 4;
    const QRectF bar((width() - kBar) / 2, handle.top(), kBar, handle.height());
    painter.drawRoundedRect(bar, kBar / 2, kBar / 2);
}

} // namespace brimlet
