#pragma once

#include "platform/cachesfolder.h"
#include "platform/reducemotion.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace brimlet {

class BrimletApp;

/// Controls the simulated program from standard input, for tests and scripts: one command a line,
/// each answered by one line of JSON on standard output. The program goes on after the end of
/// input.
///
/// - `state`: the state of store, overlay panel and pills; says only whether there is a token.
/// - `save-token TOKEN`: as typed into the menu and saved.
/// - `agree`, `pause`, `quit`: as by pressing the button.
/// - `open`: opens the menu-bar panel, as a second start does.
/// - `pictures FOLDER`: paints each visible window once more, into `FOLDER/CLASS.png`. The folder
///   has to exist.
class SimulatorConsole final : public QObject {
    Q_OBJECT

public:
    /// The references outlive the console.
    SimulatorConsole(BrimletApp& app, const CachesFolder& cachesFolder,
                     const ReduceMotion& reduceMotion);

private:
    void readInput();
    void execute(const QByteArray& line);
    void answer(const QByteArray& json) const;
    [[nodiscard]] QByteArray state() const;

    BrimletApp& m_app;
    const CachesFolder& m_cachesFolder;
    const ReduceMotion& m_reduceMotion;
    QSocketNotifier m_notifier;
    QByteArray m_pending;
};

} // namespace brimlet
