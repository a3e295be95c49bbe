#include "menu/tokenfield.h"

#include "creative/notchfont.h"
#include "menu/focusmark.h"
#include "menu/hosttheme.h"
#include "menu/textlines.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>

#include <limits>

namespace brimlet {
namespace {

// Points.
constexpr int kHorizontalPadding = 10;
constexpr int kVerticalPadding = 8;
/// QLineEdit adds this on either side of the text margins.
constexpr int kOwnMargin = 2;

} // namespace

TokenField::TokenField() {
    const QString name = tr("Host token");
    setPlaceholderText(name);
    setAccessibleName(name);
    setFont(NotchFont::tagline());
    setFrame(false);
    QPalette withoutBackground;
    withoutBackground.setColor(QPalette::Base, Qt::transparent);
    setPalette(withoutBackground);
    setMaxLength(std::numeric_limits<int>::max());
    showAs(Password);
    setTextMargins(kHorizontalPadding - kOwnMargin, 0, kHorizontalPadding - kOwnMargin, 0);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize TokenField::sizeHint() const {
    return {0, lineHeight(font()) + 2 * kVerticalPadding};
}

QSize TokenField::minimumSizeHint() const {
    return sizeHint();
}

void TokenField::showAs(EchoMode mode) {
    setEchoMode(mode);
    QPalette colors = palette();
    colors.setColor(QPalette::Text, mode == Password ? HostTheme::dim() : QColor(Qt::white));
    setPalette(colors);
    // Keeps the token out of input methods' dictionaries; setEchoMode() resets the hints.
    setInputMethodHints(Qt::ImhSensitiveData | Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
}

void TokenField::paintEvent(QPaintEvent* event) {
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        constexpr double kCorner = 10;
        painter.setPen(Qt::NoPen);
        painter.setBrush(HostTheme::card());
        painter.drawRoundedRect(QRectF(rect()), kCorner, kCorner);
        painter.setPen(
            QPen(hasFocus() && m_isFocusMarked ? HostTheme::accent() : HostTheme::faint(), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCorner - 0.5,
                                kCorner - 0.5);
    }
    QLineEdit::paintEvent(event);
}

void TokenField::focusInEvent(QFocusEvent* event) {
    showAs(Normal);
    m_isFocusMarked = isFocusMarked(event->reason(), m_isFocusMarked);
    QLineEdit::focusInEvent(event);
}

void TokenField::focusOutEvent(QFocusEvent* event) {
    // The context menu takes the focus only for a moment.
    if (event->reason() != Qt::PopupFocusReason) {
        showAs(Password);
    }
    QLineEdit::focusOutEvent(event);
}

void TokenField::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* const menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // The field's own palette passes on only the colours that the field has set itself.
    menu->setPalette(parentWidget()->palette());
    menu->popup(event->globalPos());
}

} // namespace brimlet
