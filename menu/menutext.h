#pragma once

#include "menu/textlines.h"

#include <QLabel>

#include <limits>

namespace brimlet {

/// A text of the menu: plain whatever it holds, wrapped to the width it is given. A screen reader
/// gets it whole.
class MenuText final : public QLabel {
    Q_OBJECT

public:
    MenuText(const QFont& font, const QColor& color, const QString& text = {});

    /// Nothing happens when it is the same text.
    void setWording(const QString& text);
    /// Of a text with more lines the last one shown ends with an ellipsis.
    void setMostLines(int lines);
    /// Of a longer text only so many lines or some more are there until `growBy`, so that a text of
    /// any length is shown at once.
    void setFirstLines(int lines);
    /// Has that many lines more, if the text has them.
    void growBy(int lines);

    /// Whether it is higher than that at this width; looks at no more lines than it takes to tell.
    [[nodiscard]] bool isHigher(int width, int height) const;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] const WrappedText& wrappedFor(int width) const;

    QColor m_color;
    QString m_text; ///< As it is laid out.
    int m_mostLines = std::numeric_limits<int>::max();
    int m_enoughLines = std::numeric_limits<int>::max();
    mutable WrappedText m_wrapped;
    mutable int m_wrappedWidth = -1; ///< The width that the lines were made for.
    mutable int m_wrappedLines = -1; ///< How many were to be enough then.
};

} // namespace brimlet
