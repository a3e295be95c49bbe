#include "tools/placement/brandpages.h"

#include "tools/placement/brands.h"

#include <algorithm>

namespace brimlet::placement {

std::optional<std::string> brandPage(std::string_view name) {
    const auto brand =
        std::find_if(sampleBrands.begin(), sampleBrands.end(),
                     [name](const Brand& candidate) { return candidate.name == name; });
    if (brand == sampleBrands.end()) {
        return std::nullopt;
    }
    const std::string title(brand->title);
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head><meta charset=\"utf-8\"><title>" + title +
           "</title></head>\n<body>\n<h1>" + title + "</h1>\n<p>" + std::string(brand->tagline) +
           "</p>\n<p><img src=\"/assets/" + std::string(brand->name) + ".png\" alt=\"" + title +
           "\" width=\"128\" height=\"128\"></p>\n<p>A made-up brand for trying out Brimlet.</p>\n"
           "</body>\n</html>\n";
}

} // namespace brimlet::placement
