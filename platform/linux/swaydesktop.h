#pragma once

#include <QByteArray>
#include <QObject>
#include <QPoint>
#include <QRect>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdint>
#include <memory>
#include <vector>

namespace brimlet {

/// Sway's IPC. Sway centres each floating window of an X program, and X programs cannot know what
/// its bars reserve; its IPC gives both. Never blocks. A connection is made when it is needed and
/// wakes the program for replies alone. Main thread only.
class SwayDesktop final : public QObject {
    Q_OBJECT

public:
    /// `path` is SWAYSOCK's value; nothing happens where sway does not listen there.
    explicit SwayDesktop(QString path);
    ~SwayDesktop() override;
    Q_DISABLE_COPY_MOVE(SwayDesktop)

    /// Asks what bars leave free of each output.
    void requestAreas();
    /// The last answer, in pixels of the X server; empty before the first.
    [[nodiscard]] const std::vector<QRect>& areas() const { return m_areas; }
    /// Moves this process's window of that title to the position, in pixels of the X server. Tries
    /// again while sway has no such window: it learns of one only when that is painted.
    void place(const QString& title, QPoint position);
    /// Repeats the last move, for sway centres the window at each change of its size and at each of
    /// its own requests, even one that reaches sway after the move. At most twenty times with the
    /// tries, so that the user may move the window.
    void placeAgain();
    /// Ends the tries.
    void stop();

Q_SIGNALS:
    /// The answer differs from the last one.
    void areasChanged();

private:
    void send(std::uint32_t type, const QByteArray& payload);
    bool connectToSway();
    void readReplies();
    void handleReply(std::uint32_t type, const QByteArray& payload);
    void disconnectFromSway();

    QString m_path;
    int m_socket = -1;
    std::unique_ptr<QSocketNotifier> m_readable;
    QByteArray m_received;
    std::vector<QRect> m_areas;
    QByteArray m_move; ///< The last one's command.
    int m_movesLeft = 0;
    QTimer m_retry;
};

} // namespace brimlet
