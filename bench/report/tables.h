#pragma once

#include "bench/report/findings.h"
#include "bench/report/plots.h"

#include <string>
#include <vector>

namespace brimlet {

/// All findings as Markdown, with these pictures.
[[nodiscard]] std::string markdownOf(const Findings& findings,
                                     const std::vector<Picture>& pictures);

/// The same program state that a row is fairly compared with, e.g. "brimlet.scrolling".
[[nodiscard]] std::string counterpartOf(const std::string& key);

} // namespace brimlet
