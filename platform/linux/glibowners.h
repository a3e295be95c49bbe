#pragma once

#include <gio/gio.h>

#include <memory>

namespace brimlet {

// Owners of GLib handles. Each takes over one reference and releases it.

struct GObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;

struct GErrorFree {
    void operator()(GError* error) const { g_error_free(error); }
};
using GErrorPtr = std::unique_ptr<GError, GErrorFree>;

struct GHashTableUnref {
    void operator()(GHashTable* table) const { g_hash_table_unref(table); }
};
using GHashTablePtr = std::unique_ptr<GHashTable, GHashTableUnref>;

/// Frees a list and releases the objects in it.
struct GObjectListFree {
    void operator()(GList* list) const { g_list_free_full(list, g_object_unref); }
};
using GObjectListPtr = std::unique_ptr<GList, GObjectListFree>;

/// Gives the current thread a separate GLib main context for the lifetime of this object. GLib
/// calls made on the thread then dispatch their sources there and not in the main loop.
class GOwnContext final {
public:
    GOwnContext() { g_main_context_push_thread_default(m_context); }
    ~GOwnContext() {
        // Pending sources hold references until they are dispatched.
        while (g_main_context_iteration(m_context, FALSE) != FALSE) {
        }
        g_main_context_pop_thread_default(m_context);
        g_main_context_unref(m_context);
    }
    GOwnContext(const GOwnContext&) = delete;
    GOwnContext& operator=(const GOwnContext&) = delete;

private:
    GMainContext* m_context = g_main_context_new();
};

} // namespace brimlet
