#pragma once

#include "host/assignment.h"

namespace brimlet {

/// Which of the menu's optional parts are shown. All others always are.
struct MenuRows final {
    bool notchedOnly = false;        ///< "Notched MacBooks only."
    bool moveToApplications = false; ///< The advice to drag the app into Applications.
    bool leftPanel = false;          ///< The left slot's row.
    bool rightPanel = false;         ///< The right slot's row.
    bool noBrand = false;   ///< "Unfilled" over "No brand this week"; both slots are empty.
    bool split = false;     ///< The number of hosts that share the week.
    bool banked = false;    ///< The amount that waits to be paid out.
    bool agreement = false; ///< The agreement's text and its button.
};

/// `week` is the store's assignment.
[[nodiscard]] MenuRows menuRows(const Assignment& week, bool hasNotch);

} // namespace brimlet
