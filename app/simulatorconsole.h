#pragma once

#include "platform/cachesfolder.h"
#include "platform/reducemotion.h"

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace brimlet {

class BrimletApp;

/// Drives the simulated program from its standard input, one command a line, each answered by one
/// line of JSON on standard output: what a test or a script would otherwise have to read off the
/// screen. The end of the input ends nothing.
///
/// - `state`: what the store, the panel and its pills hold; of the token only whether there is one.
/// - `save-token TOKEN`: as if typed into the menu and saved.
/// - `agree`, `pause`, `quit`: as if the button were pressed.
/// - `open`: opens the menu-bar panel, as a second start does.
class SimulatorConsole final : public QObject {
    Q_OBJECT

public:
    /// All outlive the console.
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
