#pragma once

#include <QLineEdit>

namespace brimlet {

/// The field for the host token, whose text is kept exactly as typed or pasted. Shows the token
/// while it has the keyboard focus, and dots otherwise, so that others cannot read it from the
/// screen.
class TokenField final : public QLineEdit {
    Q_OBJECT

public:
    TokenField();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void showAs(EchoMode mode);

    bool m_isFocusMarked = true;
};

} // namespace brimlet
