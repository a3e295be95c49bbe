#include "tests/platform/wayland/standincompositor.h"

#include <QRegion>
#include <QSocketNotifier>

#include "server-cursor-shape.h"
#include "server-fractional-scale-v1.h"
#include "server-viewporter.h"
#include "server-wayland.h"
#include "server-wlr-layer-shell.h"
#include "server-xdg-activation-v1.h"
#include "server-xdg-output-unstable-v1.h"
#include "server-xdg-shell.h"

#include <algorithm>
#include <memory>

#include <wayland-server-core.h>

namespace brimlet {
namespace {

constexpr auto kIgnore = [](auto...) {};
constexpr auto kDestroy = [](wl_client*, wl_resource* resource) { wl_resource_destroy(resource); };

QString text(const QRect& rect) {
    return QStringLiteral("%1,%2 %3x%4")
        .arg(rect.x())
        .arg(rect.y())
        .arg(rect.width())
        .arg(rect.height());
}

struct Surface final {
    StandInCompositor::State* state = nullptr;
    wl_resource* resource = nullptr;
    QString role; ///< "anchor", "capsules", "tooltip", "cursor" or empty.
    wl_resource* attached = nullptr;
    bool hasAttached = false;
    wl_resource* shown = nullptr;
    QRegion damage;
    QRegion pendingInput;
    QRegion input;
    wl_resource* pendingFrame = nullptr;
    wl_resource* frame = nullptr; ///< Committed and not answered.
};

} // namespace

struct StandInCompositor::State final {
    State(StandInCompositor& compositor, const StandInManners& kind,
          std::vector<StandInOutput> screens)
        : owner(compositor)
        , manners(kind)
        , outputs(std::move(screens)) {}

    StandInCompositor& owner;
    StandInManners manners;
    std::vector<StandInOutput> outputs;
    wl_listener arrival{};
    QTemporaryDir folder;
    QByteArray folderBefore = qgetenv("XDG_RUNTIME_DIR");
    QByteArray displayBefore = qgetenv("WAYLAND_DISPLAY");
    wl_display* display = wl_display_create();
    wl_event_loop* loop = wl_display_get_event_loop(display);
    std::unique_ptr<QSocketNotifier> notifier;
    wl_client* client = nullptr;
    std::vector<wl_global*> outputGlobals;
    std::vector<std::unique_ptr<Surface>> surfaces;
    std::vector<wl_resource*> buffersInUse;
    wl_resource* layerSurface = nullptr;
    QString layer;
    wl_resource* popup = nullptr; ///< With the capsules.
    wl_resource* windows = nullptr;
    wl_resource* pointer = nullptr;
    wl_resource* touch = nullptr;
    std::uint32_t serial = 0;
    int requests = 0;
    wl_protocol_logger* logger = nullptr;

    void write(const QString& what) { owner.log << what; }
    [[nodiscard]] Surface* capsules() const {
        const auto found = std::find_if(surfaces.begin(), surfaces.end(), [](const auto& each) {
            return each->role == QStringLiteral("capsules");
        });
        return found == surfaces.end() ? nullptr : found->get();
    }
    void flush() const { wl_display_flush_clients(display); }
};

namespace {

using State = StandInCompositor::State;

State& stateOf(wl_resource* resource) {
    return *static_cast<State*>(wl_resource_get_user_data(resource));
}
Surface& surfaceOf(wl_resource* resource) {
    return *static_cast<Surface*>(wl_resource_get_user_data(resource));
}

/// A resource of that interface whose data is `data`.
wl_resource* make(wl_client* client, const wl_interface& interface, int version, std::uint32_t id,
                  const void* implementation, void* data,
                  wl_resource_destroy_func_t destroyed = nullptr) {
    wl_resource* const resource = wl_resource_create(client, &interface, version, id);
    wl_resource_set_implementation(resource, implementation, data, destroyed);
    return resource;
}

// ---- surfaces
// -------------------------------------------------------------------------------------

void answer(Surface& surface) {
    if (surface.frame != nullptr) {
        wl_callback_send_done(surface.frame, 0);
        wl_resource_destroy(surface.frame);
    }
}

void release(State& state, wl_resource* buffer) {
    if (std::erase(state.buffersInUse, buffer) > 0) {
        wl_buffer_send_release(buffer);
    }
}

void commit(Surface& surface) {
    State& state = *surface.state;
    surface.input = surface.pendingInput;
    if (surface.hasAttached) {
        if (state.manners.releasesBuffers && surface.shown != nullptr &&
            surface.shown != surface.attached) {
            release(state, surface.shown);
        }
        surface.shown = surface.attached;
        surface.hasAttached = false;
        if (surface.shown != nullptr && surface.role == QStringLiteral("capsules")) {
            state.buffersInUse.push_back(surface.shown);
        }
        QStringList damage;
        for (const QRect& part : surface.damage) {
            damage << text(part);
        }
        state.write(QStringLiteral("%1: %2").arg(surface.role, damage.join(QStringLiteral(" + "))));
        surface.damage = {};
    }
    if (surface.pendingFrame != nullptr) {
        surface.frame = surface.pendingFrame;
        surface.pendingFrame = nullptr;
        if (state.manners.answersFrames) {
            answer(surface);
        }
    }
}

const struct wl_surface_interface kSurface = [] {
    struct wl_surface_interface requests {};
    requests.destroy = kDestroy;
    requests.attach = [](wl_client*, wl_resource* surface, wl_resource* buffer, std::int32_t,
                         std::int32_t) {
        surfaceOf(surface).attached = buffer;
        surfaceOf(surface).hasAttached = true;
    };
    requests.damage = kIgnore;
    requests.frame = [](wl_client* client, wl_resource* surface, std::uint32_t id) {
        Surface& of = surfaceOf(surface);
        of.pendingFrame =
            make(client, wl_callback_interface, 1, id, nullptr, &of, [](wl_resource* callback) {
                Surface& owner = surfaceOf(callback);
                if (owner.frame == callback) {
                    owner.frame = nullptr;
                }
                if (owner.pendingFrame == callback) {
                    owner.pendingFrame = nullptr;
                }
            });
    };
    requests.set_opaque_region = kIgnore;
    requests.set_input_region = [](wl_client*, wl_resource* surface, wl_resource* region) {
        surfaceOf(surface).pendingInput = *static_cast<QRegion*>(wl_resource_get_user_data(region));
    };
    requests.commit = [](wl_client*, wl_resource* surface) { commit(surfaceOf(surface)); };
    requests.set_buffer_transform = kIgnore;
    requests.set_buffer_scale = kIgnore;
    requests.damage_buffer = [](wl_client*, wl_resource* surface, std::int32_t x, std::int32_t y,
                                std::int32_t width, std::int32_t height) {
        surfaceOf(surface).damage += QRect(x, y, width, height);
    };
    return requests;
}();

const struct wl_region_interface kRegion {
    .destroy = kDestroy,
    .add =
        [](wl_client*, wl_resource* region, std::int32_t x, std::int32_t y, std::int32_t width,
           std::int32_t height) {
            *static_cast<QRegion*>(wl_resource_get_user_data(region)) += QRect(x, y, width, height);
        },
    .subtract = kIgnore
};

const struct wl_compositor_interface kCompositor {
    .create_surface =
        [](wl_client* client, wl_resource* compositor, std::uint32_t id) {
            State& state = stateOf(compositor);
            auto surface = std::make_unique<Surface>();
            surface->state = &state;
            surface->resource = make(client, wl_surface_interface, 4, id, &kSurface, surface.get(),
                                     [](wl_resource* resource) {
                                         Surface& of = surfaceOf(resource);
                                         // Its callbacks die with the client at the latest.
                                         for (wl_resource* each : {of.frame, of.pendingFrame}) {
                                             if (each != nullptr) {
                                                 wl_resource_destroy(each);
                                             }
                                         }
                                         if (!of.role.isEmpty()) {
                                             of.state->write(of.role + QStringLiteral(" gone"));
                                         }
                                         std::erase_if(of.state->surfaces, [&](const auto& each) {
                                             return each.get() == &of;
                                         });
                                     });
            state.surfaces.push_back(std::move(surface));
        },
    .create_region = [](wl_client* client, wl_resource*, std::uint32_t id) {
        make(client, wl_region_interface, 1, id, &kRegion, new QRegion, [](wl_resource* region) {
            delete static_cast<QRegion*>(wl_resource_get_user_data(region));
        });
    }
};

const struct wl_subsurface_interface kPart = [] {
    struct wl_subsurface_interface requests {};
    requests.destroy = kDestroy;
    requests.set_position = [](wl_client*, wl_resource* part, std::int32_t x, std::int32_t y) {
        surfaceOf(part).state->write(QStringLiteral("part at %1,%2").arg(x).arg(y));
    };
    requests.place_above = kIgnore;
    requests.place_below = kIgnore;
    requests.set_sync = kIgnore;
    requests.set_desync = kIgnore;
    return requests;
}();

const struct wl_subcompositor_interface kSubcompositor {
    .destroy = kDestroy, .get_subsurface = [](wl_client* client, wl_resource*, std::uint32_t id,
                                              wl_resource* surface, wl_resource* parent) {
        const bool isInLayer = surfaceOf(parent).role == QStringLiteral("anchor");
        surfaceOf(surface).state->write(isInLayer ? QStringLiteral("part of the layer surface")
                                                  : QStringLiteral("part of the popup"));
        surfaceOf(surface).role = QStringLiteral("capsules");
        make(client, wl_subsurface_interface, 1, id, &kPart, &surfaceOf(surface));
    }
};

// ---- memory that is not to be had
// ------------------------------------------------------------------

const struct wl_shm_interface kRefusingShm = [] {
    struct wl_shm_interface requests {};
    requests.create_pool = [](wl_client*, wl_resource* shm, std::uint32_t, std::int32_t fd,
                              std::int32_t) {
        ::close(fd);
        stateOf(shm).write(QStringLiteral("pool refused"));
        wl_resource_post_error(shm, WL_SHM_ERROR_INVALID_FD, "no");
    };
    return requests;
}();

// ---- shells
// ---------------------------------------------------------------------------------------

const struct zwlr_layer_surface_v1_interface kLayerSurface = [] {
    struct zwlr_layer_surface_v1_interface requests {};
    requests.set_size = kIgnore;
    requests.set_anchor = [](wl_client*, wl_resource* layer, std::uint32_t anchor) {
        stateOf(layer).layer += QStringLiteral(" anchor %1").arg(anchor);
    };
    requests.set_exclusive_zone = [](wl_client*, wl_resource* layer, std::int32_t zone) {
        stateOf(layer).layer += QStringLiteral(" zone %1").arg(zone);
    };
    requests.set_margin = [](wl_client*, wl_resource* layer, std::int32_t top, std::int32_t,
                             std::int32_t, std::int32_t left) {
        stateOf(layer).layer += QStringLiteral(" at %1,%2").arg(left).arg(top);
    };
    requests.set_keyboard_interactivity = [](wl_client*, wl_resource* layer, std::uint32_t kind) {
        stateOf(layer).layer += QStringLiteral(" keyboard %1").arg(kind);
    };
    requests.get_popup = kIgnore;
    requests.ack_configure = kIgnore;
    requests.destroy = kDestroy;
    requests.set_layer = kIgnore;
    return requests;
}();

const struct zwlr_layer_shell_v1_interface kLayerShell {
    .get_layer_surface =
        [](wl_client* client, wl_resource* shell, std::uint32_t id, wl_resource* surface,
           wl_resource* output, std::uint32_t layer, const char*) {
            State& state = stateOf(shell);
            surfaceOf(surface).role = QStringLiteral("anchor");
            state.layer =
                QStringLiteral("layer %1 on %2")
                    .arg(layer)
                    .arg(static_cast<StandInOutput*>(wl_resource_get_user_data(output))->connector);
            state.layerSurface =
                make(client, zwlr_layer_surface_v1_interface, wl_resource_get_version(shell), id,
                     &kLayerSurface, &state,
                     [](wl_resource* resource) { stateOf(resource).layerSurface = nullptr; });
            zwlr_layer_surface_v1_send_configure(state.layerSurface, ++state.serial, 1, 1);
        },
    .destroy = kDestroy
};

const struct xdg_popup_interface kPopup {
    .destroy = kDestroy, .grab = kIgnore, .reposition = kIgnore
};

const struct xdg_surface_interface kXdgSurface = [] {
    struct xdg_surface_interface requests {};
    requests.destroy = kDestroy;
    requests.get_popup = [](wl_client* client, wl_resource* xdgSurface, std::uint32_t id,
                            wl_resource* parent, wl_resource* positioner) {
        Surface& surface = surfaceOf(xdgSurface);
        State& state = *surface.state;
        // From version 4 on, nothing but the tooltip is a popup.
        const bool isForCapsules =
            parent == nullptr && wl_resource_get_version(state.layerSurface) < 4;
        surface.role = isForCapsules ? QStringLiteral("popup") : QStringLiteral("tooltip");
        const QRect place = *static_cast<QRect*>(wl_resource_get_user_data(positioner));
        state.write(QStringLiteral("%1 placed at %2").arg(surface.role, text(place)));
        wl_resource* const popup =
            make(client, xdg_popup_interface, 1, id, &kPopup, &state, [](wl_resource* resource) {
                if (stateOf(resource).popup == resource) {
                    stateOf(resource).popup = nullptr;
                }
            });
        if (isForCapsules) {
            state.popup = popup;
        }
        xdg_popup_send_configure(popup, place.x(), place.y(), place.width(), place.height());
        xdg_surface_send_configure(xdgSurface, ++state.serial);
    };
    requests.set_window_geometry = kIgnore;
    requests.ack_configure = kIgnore;
    return requests;
}();

const struct xdg_positioner_interface kPositioner = [] {
    struct xdg_positioner_interface requests {};
    requests.destroy = kDestroy;
    requests.set_size = [](wl_client*, wl_resource* positioner, std::int32_t width,
                           std::int32_t height) {
        static_cast<QRect*>(wl_resource_get_user_data(positioner))->setSize({width, height});
    };
    requests.set_anchor_rect = [](wl_client*, wl_resource* positioner, std::int32_t x,
                                  std::int32_t y, std::int32_t, std::int32_t) {
        static_cast<QRect*>(wl_resource_get_user_data(positioner))->moveTo(x, y);
    };
    requests.set_anchor = kIgnore;
    requests.set_gravity = kIgnore;
    requests.set_constraint_adjustment = kIgnore;
    requests.set_offset = [](wl_client*, wl_resource* positioner, std::int32_t x, std::int32_t y) {
        static_cast<QRect*>(wl_resource_get_user_data(positioner))->translate(x, y);
    };
    return requests;
}();

const struct xdg_wm_base_interface kWindows {
    .destroy = kDestroy,
    .create_positioner =
        [](wl_client* client, wl_resource*, std::uint32_t id) {
            make(client, xdg_positioner_interface, 1, id, &kPositioner, new QRect,
                 [](wl_resource* positioner) {
                     delete static_cast<QRect*>(wl_resource_get_user_data(positioner));
                 });
        },
    .get_xdg_surface =
        [](wl_client* client, wl_resource* windows, std::uint32_t id, wl_resource* surface) {
            stateOf(windows).windows = windows;
            make(client, xdg_surface_interface, 1, id, &kXdgSurface, &surfaceOf(surface));
        },
    .pong = [](wl_client*, wl_resource* windows, std::uint32_t) {
        stateOf(windows).write(QStringLiteral("pong"));
    }
};

// ---- input
// ----------------------------------------------------------------------------------------

const struct wl_pointer_interface kPointer {
    .set_cursor =
        [](wl_client*, wl_resource* pointer, std::uint32_t, wl_resource* surface, std::int32_t,
           std::int32_t) {
            surfaceOf(surface).role = QStringLiteral("cursor");
            stateOf(pointer).write(QStringLiteral("cursor set"));
        },
    .release = kDestroy
};
const struct wl_touch_interface kTouch { .release = kDestroy };

const struct wl_seat_interface kSeat {
    .get_pointer =
        [](wl_client* client, wl_resource* seat, std::uint32_t id) {
            stateOf(seat).pointer =
                make(client, wl_pointer_interface, 5, id, &kPointer, &stateOf(seat),
                     [](wl_resource* pointer) { stateOf(pointer).pointer = nullptr; });
        },
    .get_keyboard = kIgnore,
    .get_touch =
        [](wl_client* client, wl_resource* seat, std::uint32_t id) {
            stateOf(seat).touch = make(client, wl_touch_interface, 5, id, &kTouch, &stateOf(seat),
                                       [](wl_resource* touch) { stateOf(touch).touch = nullptr; });
        },
    .release = kDestroy
};

const struct wp_cursor_shape_device_v1_interface kShapeDevice {
    .destroy = kDestroy,
    .set_shape = [](wl_client*, wl_resource* device, std::uint32_t, std::uint32_t shape) {
        stateOf(device).write(QStringLiteral("cursor shape %1").arg(shape));
    }
};
const struct wp_cursor_shape_manager_v1_interface kShapes {
    .destroy = kDestroy,
    .get_pointer = [](wl_client* client, wl_resource* shapes, std::uint32_t id, wl_resource*) {
        make(client, wp_cursor_shape_device_v1_interface, 1, id, &kShapeDevice, &stateOf(shapes));
    }
};

const struct xdg_activation_token_v1_interface kToken {
    .set_serial =
        [](wl_client*, wl_resource* token, std::uint32_t serial, wl_resource*) {
            stateOf(token).write(QStringLiteral("token for press %1").arg(serial));
        },
    .set_app_id = kIgnore, .set_surface = kIgnore,
    .commit = [](wl_client*,
                 wl_resource* token) { xdg_activation_token_v1_send_done(token, "a-token"); },
    .destroy = kDestroy
};
const struct xdg_activation_v1_interface kActivation {
    .destroy = kDestroy,
    .get_activation_token =
        [](wl_client* client, wl_resource* activation, std::uint32_t id) {
            make(client, xdg_activation_token_v1_interface, 1, id, &kToken, &stateOf(activation));
        },
    .activate = kIgnore
};

// ---- outputs and scale
// ----------------------------------------------------------------------------

const struct wl_output_interface kOutput { .release = kDestroy };

void describe(wl_resource* resource) {
    const auto& output = *static_cast<StandInOutput*>(wl_resource_get_user_data(resource));
    wl_output_send_geometry(resource, output.logical.x(), output.logical.y(), 0, 0, 0, "", "",
                            output.transform);
    wl_output_send_mode(resource, WL_OUTPUT_MODE_CURRENT, output.mode.width(), output.mode.height(),
                        60000);
    wl_output_send_scale(resource, output.scale);
    wl_output_send_name(resource, output.connector.toUtf8().constData());
    wl_output_send_done(resource);
}

const struct zxdg_output_v1_interface kDescription { .destroy = kDestroy };
const struct zxdg_output_manager_v1_interface kDescriptions {
    .destroy = kDestroy,
    .get_xdg_output = [](wl_client* client, wl_resource*, std::uint32_t id, wl_resource* output) {
        const auto& facts = *static_cast<StandInOutput*>(wl_resource_get_user_data(output));
        wl_resource* const description =
            make(client, zxdg_output_v1_interface, 3, id, &kDescription, nullptr);
        zxdg_output_v1_send_logical_position(description, facts.logical.x(), facts.logical.y());
        zxdg_output_v1_send_logical_size(description, facts.logical.width(),
                                         facts.logical.height());
        wl_output_send_done(output);
    }
};

const struct wp_viewport_interface kViewport {
    .destroy = kDestroy, .set_source = kIgnore, .set_destination = kIgnore
};
const struct wp_viewporter_interface kViewporter {
    .destroy = kDestroy,
    .get_viewport = [](wl_client* client, wl_resource*, std::uint32_t id, wl_resource*) {
        make(client, wp_viewport_interface, 1, id, &kViewport, nullptr);
    }
};
const struct wp_fractional_scale_v1_interface kScale { .destroy = kDestroy };
const struct wp_fractional_scale_manager_v1_interface kScales {
    .destroy = kDestroy,
    .get_fractional_scale = [](wl_client* client, wl_resource*, std::uint32_t id, wl_resource*) {
        constexpr std::uint32_t kOneAndAHalf = 180; // in 120ths
        wp_fractional_scale_v1_send_preferred_scale(
            make(client, wp_fractional_scale_v1_interface, 1, id, &kScale, nullptr), kOneAndAHalf);
    }
};

/// Offers a global whose requests are those of `implementation`.
template <const wl_interface& interface, auto& implementation>
void offer(State& state, int version) {
    wl_global_create(state.display, &interface, version, &state,
                     [](wl_client* client, void* data, std::uint32_t bound, std::uint32_t id) {
                         make(client, interface, static_cast<int>(bound), id, &implementation,
                              data);
                     });
}

void offerSeat(State& state) {
    wl_global_create(state.display, &wl_seat_interface, 5, &state,
                     [](wl_client* client, void* data, std::uint32_t, std::uint32_t id) {
                         wl_seat_send_capabilities(
                             make(client, wl_seat_interface, 5, id, &kSeat, data),
                             WL_SEAT_CAPABILITY_POINTER | WL_SEAT_CAPABILITY_TOUCH);
                     });
}

void offerOutputs(State& state) {
    for (StandInOutput& output : state.outputs) {
        state.outputGlobals.push_back(wl_global_create(
            state.display, &wl_output_interface, 4, &output,
            [](wl_client* client, void* data, std::uint32_t version, std::uint32_t id) {
                describe(make(client, wl_output_interface, static_cast<int>(version), id, &kOutput,
                              data));
            }));
    }
}

} // namespace

StandInCompositor::StandInCompositor(const StandInManners& manners,
                                     std::vector<StandInOutput> outputs)
    : m_state(std::make_unique<State>(*this, manners, std::move(outputs))) {
    State& state = *m_state;
    qputenv("XDG_RUNTIME_DIR", state.folder.path().toUtf8());
    qputenv("WAYLAND_DISPLAY", "stand-in");
    wl_display_add_socket(state.display, "stand-in");
    offer<wl_compositor_interface, kCompositor>(state, 4);
    offer<wl_subcompositor_interface, kSubcompositor>(state, 1);
    if (manners.refusesPools) {
        offer<wl_shm_interface, kRefusingShm>(state, 1);
    } else if (manners.hasShm) {
        wl_display_init_shm(state.display);
    }
    offer<xdg_wm_base_interface, kWindows>(state, 1);
    if (manners.hasLayerShell) {
        offer<zwlr_layer_shell_v1_interface, kLayerShell>(state, manners.layerShellVersion);
    }
    if (manners.describesOutputs) {
        offer<zxdg_output_manager_v1_interface, kDescriptions>(state, 3);
    }
    if (manners.hasFractionalScale) {
        offer<wp_viewporter_interface, kViewporter>(state, 1);
        offer<wp_fractional_scale_manager_v1_interface, kScales>(state, 1);
    }
    if (manners.hasCursorShapes) {
        offer<wp_cursor_shape_manager_v1_interface, kShapes>(state, 1);
    }
    if (manners.hasActivation) {
        offer<xdg_activation_v1_interface, kActivation>(state, 1);
    }
    offerSeat(state);
    offerOutputs(state);
    state.arrival.notify = [](wl_listener* listener, void* client) {
        State* found = wl_container_of(listener, found, arrival);
        found->client = static_cast<wl_client*>(client);
        found->write(QStringLiteral("client"));
    };
    state.logger = wl_display_add_protocol_logger(
        state.display,
        [](void* data, wl_protocol_logger_type type, const wl_protocol_logger_message*) {
            static_cast<State*>(data)->requests += type == WL_PROTOCOL_LOGGER_REQUEST ? 1 : 0;
        },
        &state);
    wl_display_add_client_created_listener(state.display, &state.arrival);
    state.notifier =
        std::make_unique<QSocketNotifier>(wl_event_loop_get_fd(state.loop), QSocketNotifier::Read);
    connect(state.notifier.get(), &QSocketNotifier::activated, this, [&state] {
        wl_event_loop_dispatch(state.loop, 0);
        state.flush();
    });
}

StandInCompositor::~StandInCompositor() {
    wl_display_destroy_clients(m_state->display);
    wl_protocol_logger_destroy(m_state->logger);
    wl_display_destroy(m_state->display);
    qputenv("XDG_RUNTIME_DIR", m_state->folderBefore);
    if (m_state->displayBefore.isNull()) {
        qunsetenv("WAYLAND_DISPLAY");
    } else {
        qputenv("WAYLAND_DISPLAY", m_state->displayBefore);
    }
}

void StandInCompositor::disconnectClient() {
    wl_client_destroy(m_state->client);
    m_state->client = nullptr;
}

void StandInCompositor::ping() {
    xdg_wm_base_send_ping(m_state->windows, ++m_state->serial);
    m_state->flush();
}

void StandInCompositor::closeLayerSurface() {
    zwlr_layer_surface_v1_send_closed(m_state->layerSurface);
    m_state->flush();
}

void StandInCompositor::endPopup() {
    xdg_popup_send_popup_done(m_state->popup);
    m_state->flush();
}

void StandInCompositor::answerFrame() {
    answer(*m_state->capsules());
    m_state->flush();
}

void StandInCompositor::setOutputs(std::vector<StandInOutput> outputs) {
    for (wl_global* const global : std::exchange(m_state->outputGlobals, {})) {
        wl_global_destroy(global);
    }
    m_state->outputs = std::move(outputs);
    offerOutputs(*m_state);
    m_state->flush();
}

void StandInCompositor::pointerEnter(QPointF position) {
    wl_pointer_send_enter(m_state->pointer, ++m_state->serial, m_state->capsules()->resource,
                          wl_fixed_from_double(position.x()), wl_fixed_from_double(position.y()));
    m_state->flush();
}

void StandInCompositor::pointerMove(QPointF position) {
    wl_pointer_send_motion(m_state->pointer, 0, wl_fixed_from_double(position.x()),
                           wl_fixed_from_double(position.y()));
    m_state->flush();
}

void StandInCompositor::pointerLeave() {
    wl_pointer_send_leave(m_state->pointer, ++m_state->serial, m_state->capsules()->resource);
    m_state->flush();
}

void StandInCompositor::pointerButton(bool isPressed) {
    constexpr std::uint32_t kLeft = 0x110;
    wl_pointer_send_button(m_state->pointer, ++m_state->serial, 0, kLeft,
                           isPressed ? WL_POINTER_BUTTON_STATE_PRESSED
                                     : WL_POINTER_BUTTON_STATE_RELEASED);
    m_state->flush();
}

void StandInCompositor::touchDown(QPointF position) {
    wl_touch_send_down(m_state->touch, ++m_state->serial, 0, m_state->capsules()->resource, 0,
                       wl_fixed_from_double(position.x()), wl_fixed_from_double(position.y()));
    m_state->flush();
}

void StandInCompositor::touchUp() {
    wl_touch_send_up(m_state->touch, ++m_state->serial, 0, 0);
    m_state->flush();
}

bool StandInCompositor::isShown() const {
    const Surface* const capsules = m_state->capsules();
    const bool needsPopup =
        m_state->layerSurface != nullptr && wl_resource_get_version(m_state->layerSurface) < 4;
    return capsules != nullptr && (m_state->popup != nullptr || !needsPopup) &&
           capsules->shown != nullptr;
}

const QRegion& StandInCompositor::inputRegion() const {
    return m_state->capsules()->input;
}

QImage StandInCompositor::picture() const {
    wl_shm_buffer* const buffer = wl_shm_buffer_get(m_state->capsules()->shown);
    wl_shm_buffer_begin_access(buffer);
    const QImage copy =
        QImage(static_cast<const uchar*>(wl_shm_buffer_get_data(buffer)),
               wl_shm_buffer_get_width(buffer), wl_shm_buffer_get_height(buffer),
               wl_shm_buffer_get_stride(buffer), QImage::Format_ARGB32_Premultiplied)
            .copy();
    wl_shm_buffer_end_access(buffer);
    return copy;
}

int StandInCompositor::buffersInUse() const {
    return static_cast<int>(m_state->buffersInUse.size());
}

int StandInCompositor::requests() const {
    return m_state->requests;
}

QString StandInCompositor::layer() const {
    return m_state->layer;
}

} // namespace brimlet
