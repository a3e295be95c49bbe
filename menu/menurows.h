#pragma once

#include "host/assignment.h"

namespace brimlet {

/// Which of the menu's children are there that need not be. The others always are.
struct MenuRows final {
    bool notchedOnly = false;        ///< "Notched MacBooks only."
    bool moveToApplications = false; ///< The advice to drag the app into Applications.
    bool leftPanel = false;          ///< The left slot's row.
    bool rightPanel = false;         ///< The right slot's row.
    bool noBrand = false;            ///< "Unfilled" over "No brand this week", for want of both.
    bool split = false;              ///< With how many hosts the week is split.
    bool banked = false;             ///< What waits to be paid out.
    bool agreement = false;          ///< The agreement's text and its button.

    bool operator==(const MenuRows&) const = default;
};

[[nodiscard]] MenuRows menuRows(const Assignment& week, bool hasNotch);

} // namespace brimlet
