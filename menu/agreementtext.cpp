#include "menu/agreementtext.h"

#include "creative/notchfont.h"
#include "menu/hosttheme.h"
#include "menu/menutext.h"
#include "menu/slimscrollbar.h"

#include <QKeyEvent>

namespace brimlet {
namespace {

/// Points.
constexpr int kMaximumHeight = 90;
/// Lines laid out at a time; far more than an ordinary agreement has.
constexpr int kLines = 300;
/// Between the text and the scroll bar, in points.
constexpr int kGap = 4;

} // namespace

AgreementText::AgreementText()
    : m_text(new MenuText(NotchFont::tagline(), HostTheme::dim()))
    , m_bar(new SlimScrollBar) {
    setAccessibleName(tr("Host agreement"));
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(m_bar);
    viewport()->setAutoFillBackground(false);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setWidget(m_text);
    m_text->setAutoFillBackground(false);
    connect(m_bar, &QScrollBar::valueChanged, this, &AgreementText::addLinesAtTheEnd);
}

void AgreementText::setText(const QString& text) {
    if (text == m_text->accessibleName()) {
        return;
    }
    m_text->setInitialLines(kLines);
    m_text->setText(text);
    m_bar->setValue(0);
    fitText();
    updateGeometry();
}

int AgreementText::heightForWidth(int width) const {
    return m_text->isHigher(width, kMaximumHeight) ? kMaximumHeight : m_text->heightForWidth(width);
}

QSize AgreementText::sizeHint() const {
    constexpr int kColumn = 288; // points; the menu's width without its margins
    return {kColumn, heightForWidth(kColumn)};
}

void AgreementText::fitText() {
    const bool isLong = m_text->isHigher(width(), kMaximumHeight);
    const int column = isLong ? width() - SlimScrollBar::kWidth - kGap : width();
    setFocusPolicy(isLong ? Qt::StrongFocus : Qt::NoFocus);
    setVerticalScrollBarPolicy(isLong ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    m_text->resize(column, m_text->heightForWidth(column));
}

void AgreementText::addLinesAtTheEnd() {
    if (m_bar->maximum() > 0 && m_bar->value() + kMaximumHeight >= m_bar->maximum()) {
        m_text->addLines(kLines);
        m_text->resize(m_text->width(), m_text->heightForWidth(m_text->width()));
    }
}

void AgreementText::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fitText();
}

void AgreementText::focusInEvent(QFocusEvent* event) {
    QScrollArea::focusInEvent(event);
    m_bar->setHighlighted(true);
}

void AgreementText::focusOutEvent(QFocusEvent* event) {
    QScrollArea::focusOutEvent(event);
    m_bar->setHighlighted(false);
}

void AgreementText::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Home) {
        m_bar->triggerAction(QAbstractSlider::SliderToMinimum);
    } else if (event->key() == Qt::Key_End) {
        m_bar->triggerAction(QAbstractSlider::SliderToMaximum);
    } else {
        QScrollArea::keyPressEvent(event);
    }
}

} // namespace brimlet
