#pragma once

#include "menu/textlines.h"

#include <QLabel>

#include <limits>

namespace brimlet {

/// A plain text of the menu, wrapped to its width, without much shorter lines where other breaks
/// avoid them. The accessible name is the whole text. A QLabel for the accessible role, but
/// QLabel's own text stays empty.
class MenuText final : public QLabel {
    Q_OBJECT

public:
    MenuText(const QFont& font, const QColor& color, const QString& text = {});

    /// The same text again does nothing. Unlike QLabel's function of this name never interprets
    /// markup.
    void setText(const QString& text);
    /// Shows this many lines at most; the last one ends with an ellipsis if there are more.
    void setMaximumLines(int lines);
    /// Lays out only about this many lines until `addLines`, so that a text of any length appears
    /// at once. Its last line may be short.
    void setInitialLines(int lines);
    /// Lays out about this many lines more, if the text has them.
    void addLines(int lines);

    /// Whether the text at this width is higher than `height`, both in points. Lays out
    /// no more lines than that takes.
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
    QString m_text;                                       ///< The result of `wrappableText`.
    int m_maximumLines = std::numeric_limits<int>::max(); ///< Shown.
    int m_wantedLines = std::numeric_limits<int>::max();  ///< Laid out.
    bool m_isBalanced = true;
    // The layout, and the width and the wanted lines that it was made for.
    mutable WrappedText m_wrapped;
    mutable int m_wrappedWidth = -1;
    mutable int m_wrappedLines = -1;
};

} // namespace brimlet
