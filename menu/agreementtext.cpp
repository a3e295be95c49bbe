#include "menu/agreementtext.h"

#include "creative/notchfont.h"
#include "menu/focusmark.h"
#include "menu/hosttheme.h"
#include "menu/menutext.h"
#include "menu/slimscrollbar.h"

#include <QKeyEvent>
#include <QLinearGradient>
#include <QPainter>

namespace brimlet {
namespace {

/// Points.
constexpr int kMaximumHeight = 90;
/// Lines laid out at a time; far more than an ordinary agreement has.
constexpr int kLines = 300;
/// Between the text and the scroll bar, in points.
constexpr int kGap = 4;

/// How high the end of the visible part fades, in points.
constexpr int kFade = 14;

/// Fades what is below it into the panel's background, towards the bottom.
class Fade final : public QWidget {
public:
    explicit Fade(QWidget* parent)
        : QWidget(parent) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QColor transparent = HostTheme::bg();
        transparent.setAlpha(0);
        QLinearGradient gradient(0, 0, 0, height());
        gradient.setColorAt(0, transparent);
        gradient.setColorAt(1, HostTheme::bg());
        QPainter(this).fillRect(rect(), gradient);
    }
};

} // namespace

AgreementText::AgreementText()
    : m_text(new MenuText(NotchFont::tagline(), HostTheme::dim()))
    , m_bar(new SlimScrollBar)
    , m_fade(new Fade(this)) {
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
    connect(m_bar, &QScrollBar::valueChanged, this, &AgreementText::placeFade);
    connect(m_bar, &QScrollBar::rangeChanged, this, &AgreementText::placeFade);
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

/// Over the text, and only while more of it follows.
void AgreementText::placeFade() {
    const QRect shown = viewport()->geometry();
    m_fade->setGeometry(shown.x(), shown.bottom() + 1 - kFade, shown.width(), kFade);
    m_fade->setVisible(m_bar->value() < m_bar->maximum());
}

void AgreementText::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    fitText();
    placeFade();
}

void AgreementText::focusInEvent(QFocusEvent* event) {
    QScrollArea::focusInEvent(event);
    m_isFocusMarked = isFocusMarked(event->reason(), m_isFocusMarked);
    m_bar->setHighlighted(m_isFocusMarked);
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
