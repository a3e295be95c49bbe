#include "menu/tokenfield.h"

#include "creative/notchfont.h"
#include "menu/hosttheme.h"
#include "menu/textlines.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>

#include <limits>

namespace brimlet {
namespace {

constexpr int kHorizontalPadding = 10;
constexpr int kVerticalPadding = 8;
/// What Qt keeps free on either side of the text besides.
constexpr int kOwnMargin = 2;

} // namespace

TokenField::TokenField() {
    const QString name = tr("Host token");
    setPlaceholderText(name);
    setAccessibleName(name);
    setFont(NotchFont::tagline());
    setFrame(false);
    QPalette ownGround;
    ownGround.setColor(QPalette::Base, Qt::transparent);
    setPalette(ownGround);
    setMaxLength(std::numeric_limits<int>::max());
    display(Password);
    setTextMargins(kHorizontalPadding - kOwnMargin, 0, kHorizontalPadding - kOwnMargin, 0);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize TokenField::sizeHint() const {
    return {0, lineHeight(font()) + 2 * kVerticalPadding};
}

QSize TokenField::minimumSizeHint() const {
    return sizeHint();
}

void TokenField::display(EchoMode mode) {
    setEchoMode(mode);
    // Nothing of it goes into a dictionary, in either mode.
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
        painter.setPen(QPen(hasFocus() ? HostTheme::accent() : HostTheme::line(), 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), kCorner - 0.5,
                                kCorner - 0.5);
    }
    QLineEdit::paintEvent(event);
}

void TokenField::focusInEvent(QFocusEvent* event) {
    display(Normal);
    QLineEdit::focusInEvent(event);
}

void TokenField::focusOutEvent(QFocusEvent* event) {
    // Its own menu takes the keyboard only for a moment.
    if (event->reason() != Qt::PopupFocusReason) {
        display(Password);
    }
    QLineEdit::focusOutEvent(event);
}

void TokenField::contextMenuEvent(QContextMenuEvent* event) {
    QMenu* const menu = createStandardContextMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // Its own palette would hand on no more than what it has set itself.
    menu->setPalette(parentWidget()->palette());
    menu->popup(event->globalPos());
}

} // namespace brimlet
