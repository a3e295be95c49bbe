#pragma once

#include <QLineEdit>

namespace brimlet {

/// The line in which the host types or pastes the host token, as typed. While it has the keyboard
/// the token can be read; at other times it shows dots, so that nobody reads it over a shoulder.
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
    void display(EchoMode mode);
};

} // namespace brimlet
