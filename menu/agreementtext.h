#pragma once

#include <QScrollArea>

namespace brimlet {

class MenuText;
class SlimScrollBar;

/// The host agreement: wrapped, at most 90 points high, and scrolled if it is higher, which is also
/// when it accepts the keyboard focus. While more of it follows, its last 14 points fade out. A
/// text of any length appears at once: only its first lines are laid out, and more as it is
/// scrolled through.
class AgreementText final : public QScrollArea {
    Q_OBJECT

public:
    AgreementText();

    /// Scrolls back to the top, unless the text is the same.
    void setText(const QString& text);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return {0, 0}; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void fitText();
    void addLinesAtTheEnd();
    void placeFade();

    MenuText* m_text;
    SlimScrollBar* m_bar;
    QWidget* m_fade;
    bool m_isFocusMarked = false;
};

} // namespace brimlet
