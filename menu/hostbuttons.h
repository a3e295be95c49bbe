#pragma once

#include <QAbstractButton>

namespace brimlet {

/// A button of the menu: as wide as it can be, a capsule with its label in the middle, smaller
/// while it is pressed. Space, Enter and a click press it. A ring shows that it has the keyboard,
/// unless a click gave it that.
class HostButton : public QAbstractButton {
    Q_OBJECT

public:
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    HostButton(const QString& label, QFont::Weight weight);

    /// The capsule, in the way of its kind.
    virtual void paintCapsule(QPainter& painter, const QPainterPath& capsule) const = 0;

    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool m_isFocusMarked = true;
};

/// What the host should do.
class HostPrimaryButton final : public HostButton {
    Q_OBJECT

public:
    explicit HostPrimaryButton(const QString& label);

protected:
    void paintCapsule(QPainter& painter, const QPainterPath& capsule) const override;
};

/// What the host may do.
class HostGhostButton final : public HostButton {
    Q_OBJECT

public:
    explicit HostGhostButton(const QString& label);

protected:
    void paintCapsule(QPainter& painter, const QPainterPath& capsule) const override;
};

} // namespace brimlet
