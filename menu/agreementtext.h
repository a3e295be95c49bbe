#pragma once

#include <QScrollArea>

namespace brimlet {

class MenuText;
class SlimScrollBar;

/// The host agreement: wrapped, at most 90 points high, and scrolled beyond. It takes the keyboard
/// only while there is something to scroll. A text without end is shown at once, and goes on as it
/// is scrolled through.
class AgreementText final : public QScrollArea {
    Q_OBJECT

public:
    AgreementText();

    void setWording(const QString& text);

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
    void growAtTheEnd();

    MenuText* m_text;
    SlimScrollBar* m_bar;
};

} // namespace brimlet
