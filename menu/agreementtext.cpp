#include "menu/agreementtext.h"

#include "creative/notchfont.h"
#include "menu/hosttheme.h"
#include "menu/menutext.h"
#include "menu/slimscrollbar.h"

#include <QKeyEvent>

namespace brimlet {
namespace {

constexpr int kHighest = 90;
/// Lines that are made at a time: far more than an agreement has that was written to be read.
constexpr int kLines = 300;
/// Between the text and the bar.
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
    connect(m_bar, &QScrollBar::valueChanged, this, &AgreementText::growAtTheEnd);
}

void AgreementText::setWording(const QString& text) {
    if (text == m_text->accessibleName()) {
        return;
    }
    m_text->setFirstLines(kLines);
    m_text->setWording(text);
    m_bar->setValue(0);
    fitText();
    updateGeometry();
}

int AgreementText::heightForWidth(int width) const {
    return m_text->isHigher(width, kHighest) ? kHighest : m_text->heightForWidth(width);
}

QSize AgreementText::sizeHint() const {
    constexpr int kColumn = 288;
    return {kColumn, heightForWidth(kColumn)};
}

void AgreementText::fitText() {
    const bool isLong = m_text->isHigher(width(), kHighest);
    const int column = isLong ? width() - SlimScrollBar::kWidth - kGap : width();
    setFocusPolicy(isLong ? Qt::StrongFocus : Qt::NoFocus);
    setVerticalScrollBarPolicy(isLong ? Qt::ScrollBarAlwaysOn : Qt::ScrollBarAlwaysOff);
    m_text->resize(column, m_text->heightForWidth(column));
}

void AgreementText::growAtTheEnd() {
    if (m_bar->maximum() > 0 && m_bar->value() + kHighest >= m_bar->maximum()) {
        m_text->growBy(kLines);
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
