#pragma once

#include <QEvent>
#include <QObject>

namespace brimlet {

/// Counts the paint events of a widget from now on, or of all widgets if given the application.
/// What it watches outlives it.
class PaintCounter final : public QObject {
public:
    explicit PaintCounter(QObject& watched) { watched.installEventFilter(this); }
    int paints = 0;

protected:
    bool eventFilter(QObject* /*object*/, QEvent* event) override {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

} // namespace brimlet
