#pragma once

#include "host/assignment.h"

#include <QWidget>

namespace brimlet {

/// One black capsule beside the notch, showing one creative's text.
class NotchPill final : public QWidget {
    Q_OBJECT

public:
    explicit NotchPill(QWidget* parent);

    /// What it shows; absent shows nothing. Only a clickable pill takes clicks.
    void setCreative(const std::optional<SlotCreative>& creative, bool isClickable);

    [[nodiscard]] bool isClickable() const { return m_isClickable; }
    /// The capsule's shape in the parent's pixels.
    [[nodiscard]] QRegion capsule() const;

Q_SIGNALS:
    void clicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    std::optional<SlotCreative> m_creative;
    bool m_isClickable = false;
};

} // namespace brimlet
