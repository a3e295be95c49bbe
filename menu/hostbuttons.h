#pragma once

#include <QAbstractButton>

namespace brimlet {

/// A button of the menu: a capsule over the full width with a centred label, drawn smaller while it
/// is pressed. Space, Enter and a click activate it. A ring marks the keyboard focus, unless it
/// came from a click.
class HostButton : public QAbstractButton {
    Q_OBJECT

public:
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    HostButton(const QString& label, QFont::Weight weight);

    /// Fills and outlines the capsule.
    virtual void paintCapsule(QPainter& painter, const QPainterPath& capsule) const = 0;

    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_isFocusMarked = true;
};

/// A button for a recommended action.
class HostPrimaryButton final : public HostButton {
    Q_OBJECT

public:
    explicit HostPrimaryButton(const QString& label);

protected:
    void paintCapsule(QPainter& painter, const QPainterPath& capsule) const override;
};

/// A button for an optional action.
class HostGhostButton final : public HostButton {
    Q_OBJECT

public:
    explicit HostGhostButton(const QString& label);

protected:
    void paintCapsule(QPainter& painter, const QPainterPath& capsule) const override;
};

} // namespace brimlet
