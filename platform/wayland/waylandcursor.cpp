#include "platform/wayland/waylandcursor.h"

#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandprotocols.h"

#include <wayland-cursor.h>

#include <array>
#include <cmath>

#include <dlfcn.h>

namespace brimlet {
namespace {

/// The functions of libwayland-cursor in use; null where it is missing.
struct CursorLibrary final {
    decltype(&wl_cursor_theme_load) load = nullptr;
    decltype(&wl_cursor_theme_destroy) destroy = nullptr;
    decltype(&wl_cursor_theme_get_cursor) cursor = nullptr;
    decltype(&wl_cursor_image_get_buffer) buffer = nullptr;

    CursorLibrary() {
        void* const library = ::dlopen("libwayland-cursor.so.0", RTLD_NOW);
        if (library == nullptr) {
            return;
        }
        const auto find = [library](auto& function, const char* name) {
            function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(
                ::dlsym(library, name));
        };
        find(load, "wl_cursor_theme_load");
        find(destroy, "wl_cursor_theme_destroy");
        find(cursor, "wl_cursor_theme_get_cursor");
        find(buffer, "wl_cursor_image_get_buffer");
    }
    [[nodiscard]] bool isComplete() const {
        return load != nullptr && destroy != nullptr && cursor != nullptr && buffer != nullptr;
    }
};

const CursorLibrary& cursorLibrary() {
    static const CursorLibrary library;
    return library;
}

} // namespace

void WaylandCursor::DestroyTheme::operator()(wl_cursor_theme* theme) const {
    cursorLibrary().destroy(theme);
}

WaylandCursor::WaylandCursor(WaylandConnection& connection, wl_pointer* pointer)
    : m_connection(connection)
    , m_pointer(pointer) {
    if (const auto& shapes = connection.globals().cursorShape) {
        m_device.reset(wp_cursor_shape_manager_v1_get_pointer(shapes.get(), pointer));
    }
}

WaylandCursor::~WaylandCursor() = default;

void WaylandCursor::show(std::uint32_t serial, Qt::CursorShape shape, double scale) {
    if (m_device) {
        wp_cursor_shape_device_v1_set_shape(m_device.get(), serial,
                                            shape == Qt::PointingHandCursor
                                                ? WP_CURSOR_SHAPE_DEVICE_V1_SHAPE_POINTER
                                                : WP_CURSOR_SHAPE_DEVICE_V1_SHAPE_DEFAULT);
    } else if (cursorLibrary().isComplete()) {
        showFromTheme(serial, shape, static_cast<int>(std::ceil(scale)));
    }
}

void WaylandCursor::showFromTheme(std::uint32_t serial, Qt::CursorShape shape, int scale) {
    const WaylandGlobals& globals = m_connection.globals();
    if (m_themeScale != scale) {
        bool isSet = false;
        const int size = qEnvironmentVariableIntValue("XCURSOR_SIZE", &isSet);
        constexpr int kUsualSize = 24;
        const QByteArray name = qgetenv("XCURSOR_THEME");
        m_theme.reset(cursorLibrary().load(name.isEmpty() ? nullptr : name.constData(),
                                           (isSet && size > 0 ? size : kUsualSize) * scale,
                                           globals.shm.get()));
        m_themeScale = scale;
    }
    if (!m_theme) {
        return;
    }
    // Themes have the newer names, the older ones, or both.
    const bool isHand = shape == Qt::PointingHandCursor;
    const std::array<const char*, 2> names =
        isHand ? std::array{"pointer", "hand2"} : std::array{"default", "left_ptr"};
    const wl_cursor* cursor = nullptr;
    for (const char* const name : names) {
        cursor = cursor == nullptr ? cursorLibrary().cursor(m_theme.get(), name) : cursor;
    }
    if (cursor == nullptr || cursor->image_count == 0) {
        return;
    }
    wl_cursor_image* const image = cursor->images[0];
    // The theme may have only another size.
    const auto divides = [image](int factor) {
        return image->width % static_cast<unsigned>(factor) == 0 &&
               image->height % static_cast<unsigned>(factor) == 0;
    };
    while (!divides(scale)) {
        --scale;
    }
    if (!m_surface) {
        m_surface.reset(wl_compositor_create_surface(globals.compositor.get()));
    }
    wl_pointer_set_cursor(m_pointer, serial, m_surface.get(),
                          static_cast<int>(image->hotspot_x) / scale,
                          static_cast<int>(image->hotspot_y) / scale);
    wl_surface_set_buffer_scale(m_surface.get(), scale);
    wl_surface_attach(m_surface.get(), cursorLibrary().buffer(image), 0, 0);
    wl_surface_damage_buffer(m_surface.get(), 0, 0, static_cast<int>(image->width),
                             static_cast<int>(image->height));
    wl_surface_commit(m_surface.get());
}

void WaylandCursor::unload() {
    m_surface.reset();
    m_theme.reset();
    m_themeScale = 0;
}

} // namespace brimlet
