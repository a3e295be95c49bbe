#pragma once

#include "menu/textlines.h"

#include <QLabel>

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
    void setMostLines(int lines) { m_mostLines = lines; }

    /// Whether it needs more height than that at this width; quick even for a text of any length.
    [[nodiscard]] bool isHigher(int width, int height) const;

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] const std::vector<TextSpan>& linesFor(int width) const;

    QColor m_color;
    QString m_text;      ///< As it is laid out.
    int m_mostLines = 0; ///< None set: as many as there are.
    mutable std::vector<TextSpan> m_lines;
    mutable int m_linesWidth = -1; ///< The width that the lines were made for.
};

} // namespace brimlet
