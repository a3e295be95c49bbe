#pragma once

#include <QObject>

#include <functional>
#include <utility>

namespace brimlet {

/// Collects requests for a piece of work: it is done once, in a later turn of the event loop,
/// however often it was scheduled until then. Main thread only.
class OncePerTurn final : public QObject {
public:
    /// `work` is not called any more once this object is destroyed.
    explicit OncePerTurn(std::function<void()> work, QObject* parent = nullptr)
        : QObject(parent)
        , m_work(std::move(work)) {}

    void schedule() {
        if (!std::exchange(m_isDue, true)) {
            QMetaObject::invokeMethod(this, &OncePerTurn::run, Qt::QueuedConnection);
        }
    }

    /// Scheduled and not done yet.
    [[nodiscard]] bool isDue() const { return m_isDue; }

private:
    void run() {
        m_isDue = false; // first: the work may schedule itself again
        m_work();
    }

    std::function<void()> m_work;
    bool m_isDue = false;
};

} // namespace brimlet
