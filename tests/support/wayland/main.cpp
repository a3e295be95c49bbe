// The input of a private Wayland desktop, in sway or KWin, for scripts. Reads commands from
// standard input, a line each, and answers "done" to each when the compositor has handled it:
//
//   move X Y, press left|right, release left|right, type TEXT, key Escape|Return
//
// Pointer and keyboard are there until the input ends.

#include "tests/support/wayland/seat.h"

#include <iostream>
#include <sstream>
#include <string>

using brimlet::desktop::Seat;

namespace {

bool execute(Seat& seat, const std::string& line) {
    std::istringstream words(line);
    std::string verb;
    std::string what;
    words >> verb;
    if (verb == "move") {
        double x = 0;
        double y = 0;
        words >> x >> y;
        seat.moveTo({x, y});
        return !words.fail();
    }
    words >> what;
    const auto button = what == "right" ? Seat::Button::Right : Seat::Button::Left;
    if (verb == "press") {
        seat.press(button);
    } else if (verb == "release") {
        seat.release(button);
    } else if (verb == "type") {
        seat.type(what.c_str());
    } else if (verb == "key") {
        seat.strike(what == "Escape" ? Seat::Key::Escape : Seat::Key::Return);
    } else {
        return false;
    }
    return true;
}

} // namespace

int main() {
    Seat seat;
    for (std::string line; std::getline(std::cin, line);) {
        std::cout << (execute(seat, line) ? "done" : "error") << std::endl;
    }
}
