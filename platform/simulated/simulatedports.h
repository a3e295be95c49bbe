#pragma once

#include "platform/bundle.h"
#include "platform/cachesfolder.h"
#include "platform/observers.h"
#include "platform/reducemotion.h"
#include "platform/simulated/machinefile.h"
#include "platform/workspace.h"

#include <QRectF>

namespace brimlet {

// Each port answers from the machine file where that has the value, and from the real port
// otherwise. The file and the real port must outlive it. Observers are called when the answer may
// have changed.

/// Where the described displays are.
enum class MachinePlace {
    AsDescribed,
    AtRealTop, ///< Moved so that the built-in one is at the top of the real primary screen.
};

/// The described displays, moved together so that the built-in one, or without one the first, is at
/// the top of `real`, centred to whole points.
[[nodiscard]] std::vector<MachineDisplay> displaysAtTop(std::vector<MachineDisplay> displays,
                                                        const Rect& real);

class SimulatedScreens final : public Screens {
public:
    SimulatedScreens(const MachineFile& file, Screens& real,
                     MachinePlace place = MachinePlace::AsDescribed);

    [[nodiscard]] std::vector<Screen> list() const override;
    [[nodiscard]] bool isBuiltIn(std::uint32_t displayNumber) const override;
    ObserverToken observeChanges(std::function<void()> changed) override;

private:
    const MachineFile& m_file;
    Screens& m_real;
    const MachinePlace m_place;
    Observers m_observers;
};

/// The described machine's primary display in the display server's space, with its top left at the
/// origin; `real` when no displays are described.
[[nodiscard]] QRectF simulatedPrimaryGeometry(const Machine& machine, const QRectF& real);

/// If the file says at the start that the screens are asleep, the sleep observers are called one
/// turn of the event loop after the first of them was added.
class SimulatedWorkspace final : public Workspace {
public:
    SimulatedWorkspace(const MachineFile& file, Workspace& real);

    ObserverToken observeScreensDidSleep(std::function<void()> block) override;
    ObserverToken observeScreensDidWake(std::function<void()> block) override;
    [[nodiscard]] std::shared_ptr<void> delaySuspend() override { return m_real.delaySuspend(); }
    void open(const Url& url) override { m_real.open(url); }

private:
    const MachineFile& m_file;
    Workspace& m_real;
    Observers m_sleep;
    Observers m_wake;
    bool m_isFirstObserver = true;
};

class SimulatedBundle final : public Bundle {
public:
    SimulatedBundle(const MachineFile& file, const Bundle& real)
        : m_file(file)
        , m_real(real) {}

    [[nodiscard]] QString path() const override;
    [[nodiscard]] QVariant infoDictionaryValue(const QString& key) const override;
    [[nodiscard]] QString identifier() const override { return m_real.identifier(); }

private:
    const MachineFile& m_file;
    const Bundle& m_real;
};

class SimulatedCachesFolder final : public CachesFolder {
public:
    SimulatedCachesFolder(const MachineFile& file, const CachesFolder& real)
        : m_file(file)
        , m_real(real) {}

    [[nodiscard]] std::optional<QString> path() const override;

private:
    const MachineFile& m_file;
    const CachesFolder& m_real;
};

class SimulatedReduceMotion final : public ReduceMotion {
public:
    SimulatedReduceMotion(const MachineFile& file, ReduceMotion& real);

    [[nodiscard]] bool isOn() const override;
    ObserverToken observeChanges(std::function<void()> changed) override;

private:
    const MachineFile& m_file;
    ReduceMotion& m_real;
    Observers m_observers;
    bool m_wasOn;
};

} // namespace brimlet
