#pragma once

#include <QImage>
#include <QObject>
#include <QPointF>
#include <QRect>
#include <QStringList>
#include <QTemporaryDir>

#include <memory>
#include <vector>

struct wl_client;
struct wl_display;
struct wl_global;
struct wl_resource;

class QSocketNotifier;

namespace brimlet {

/// An output of the stand-in.
struct StandInOutput final {
    QString connector = QStringLiteral("eDP-1");
    QRect logical = {0, 0, 1512, 982};
    QSize mode = {1512, 982};
    int scale = 1;
    int transform = 0;
};

/// What a stand-in does not do, or does otherwise than compositors should.
struct StandInManners final {
    bool hasLayerShell = true;
    int layerShellVersion = 4;
    bool hasShm = true;
    bool refusesPools = false;       ///< Each wl_shm.create_pool is a protocol error.
    bool answersFrames = true;       ///< Calls back after each commit that asks for it.
    bool releasesBuffers = true;     ///< The last one, with each new one.
    bool describesOutputs = true;    ///< Offers zxdg_output_manager_v1.
    bool hasFractionalScale = false; ///< And viewports; the scale is 1.5.
    bool hasCursorShapes = true;
    bool hasActivation = true;
};

/// A Wayland compositor in the test's own process and thread, that shows nothing and writes down
/// what it is asked for. One client at a time. WAYLAND_DISPLAY and XDG_RUNTIME_DIR name it while it
/// lives.
class StandInCompositor final : public QObject {
public:
    explicit StandInCompositor(const StandInManners& manners = {},
                               std::vector<StandInOutput> outputs = {StandInOutput()});
    ~StandInCompositor() override;
    StandInCompositor(const StandInCompositor&) = delete;
    StandInCompositor& operator=(const StandInCompositor&) = delete;

    /// Requests that change what is shown, in the order of their arrival.
    QStringList log;

    /// Ends the connection, as a compositor that dies; the socket stays.
    void disconnectClient();

    /// Asks the client for a sign of life, which it writes down as "pong".
    void ping();
    void closeLayerSurface();
    void endPopup();
    /// Answers the pending frame callback.
    void answerFrame();

    void setOutputs(std::vector<StandInOutput> outputs);

    void pointerEnter(QPointF position);
    void pointerMove(QPointF position);
    void pointerLeave();
    void pointerButton(bool isPressed);
    void touchDown(QPointF position);
    void touchUp();

    /// Whether the capsules are on the screen, and their input region in points.
    [[nodiscard]] bool isShown() const;
    [[nodiscard]] const QRegion& inputRegion() const;
    /// A copy of what the capsules' surface shows.
    [[nodiscard]] QImage picture() const;
    /// Buffers that were shown and not given back.
    [[nodiscard]] int buffersInUse() const;
    [[nodiscard]] QString layer() const;
    /// All requests so far, of any kind.
    [[nodiscard]] int requests() const;

    struct State;

private:
    std::unique_ptr<State> m_state;
};

} // namespace brimlet
