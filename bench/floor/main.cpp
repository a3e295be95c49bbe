// The least a program can do for this job: two black capsules beside the notch of the 14-inch
// machine with brand and tagline, on a bare X connection and a socket, in one loop without threads.
// It shows no pictures, opens nothing, expects both creatives, and trusts its service.
//   bench-floor ROOT_URL

#include "bench/floor/service.h"
#include "bench/floor/taglineloop.h"
#include "bench/floor/window.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <exception>

#include <nlohmann/json.hpp>
#include <poll.h>

namespace {

using namespace brimlet;
using namespace std::chrono_literals;
using Time = TaglineLoop::Time;

using Texts = std::pair<std::string, std::string>; ///< Brand and tagline.

/// The left and the right creative's texts; empty where there is none.
std::array<Texts, 2> textsOf(const std::string& body) {
    std::array<Texts, 2> texts;
    const auto reply = nlohmann::json::parse(body, nullptr, false);
    for (const auto& creative : reply.value("creatives", nlohmann::json::array())) {
        const bool isRight = creative.value("slotId", "") == "right";
        texts.at(isRight ? 1 : 0) = {creative.value("brandName", ""), creative.value("copy", "")};
    }
    return texts;
}

class Floor final {
public:
    explicit Floor(const std::string& root)
        : m_service(root) {}

    [[noreturn]] void run() {
        while (true) {
            doWhatIsDue(std::chrono::steady_clock::now());
            m_window.flush();
            wait();
        }
    }

private:
    void doWhatIsDue(Time now) {
        if (m_nextPoll <= now) {
            m_service.poll();
            m_nextPoll = now + 3s;
        }
        for (std::size_t slot = 0; slot < m_loops.size(); ++slot) {
            if (m_loops.at(slot).advance(now)) {
                paint(slot);
            }
        }
    }

    void paint(std::size_t slot) {
        m_window.paint(slot, m_loops.at(slot).showsTagline(), m_loops.at(slot).pixel());
    }

    void show(const std::array<Texts, 2>& texts) {
        if (texts == m_texts) {
            return;
        }
        m_texts = texts;
        const Time now = std::chrono::steady_clock::now();
        m_window.show();
        for (std::size_t slot = 0; slot < m_loops.size(); ++slot) {
            const auto& [brand, tagline] = texts.at(slot);
            m_window.setTexts(slot, brand, tagline);
            m_loops.at(slot).start(now, !tagline.empty() && tagline != brand,
                                   m_window.overflow(slot));
            paint(slot);
        }
    }

    /// Until the next step is due, or input from the service or the X server has arrived.
    void wait() {
        const Time due = std::min({m_nextPoll, m_loops[0].due(), m_loops[1].due()});
        const auto rest =
            std::max<std::chrono::nanoseconds>(due - std::chrono::steady_clock::now(), 0ns);
        const timespec timeout{rest / 1s, (rest % 1s).count()};
        std::array<pollfd, 2> watched{pollfd{m_window.descriptor(), POLLIN, 0},
                                      pollfd{m_service.descriptor(), POLLIN, 0}};
        ::ppoll(watched.data(), watched.size(), &timeout, nullptr);
        if (watched[1].revents != 0) {
            if (const auto body = m_service.read()) {
                show(textsOf(*body));
            }
        }
        if (watched[0].revents != 0 && m_window.readEvents()) {
            paint(0);
            paint(1);
        }
    }

    Window m_window;
    Service m_service;
    Time m_nextPoll;
    std::array<TaglineLoop, 2> m_loops;
    std::array<Texts, 2> m_texts;
};

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::fputs("usage: bench-floor ROOT_URL\n", stderr);
        return 2;
    }
    std::setlocale(LC_CTYPE, "C.UTF-8");
    try {
        Floor(argv[1]).run();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "bench-floor: %s\n", failure.what());
        return 1;
    }
}
