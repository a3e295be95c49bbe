#pragma once

#include <QtGlobal>

#include <optional>

namespace brimlet {

/// Stores the ports with which a process-wide object is created on its first use. Main thread only.
template <typename Ports>
class SharedPorts final {
public:
    /// Call before that first use. What `ports` refers to must outlive the main loop.
    static void set(const Ports& ports) { s_ports.emplace(ports); }

    [[nodiscard]] static const Ports& get() {
        Q_ASSERT_X(s_ports, "SharedPorts", "the ports are set before the shared object is used");
        return *s_ports;
    }

private:
    inline static std::optional<Ports> s_ports;
};

} // namespace brimlet
