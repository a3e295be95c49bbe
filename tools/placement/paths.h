#pragma once

#include <string_view>

namespace brimlet::placement {

inline constexpr std::string_view displayPath = "/api/display";
inline constexpr std::string_view heartbeatPath = "/api/host/heartbeat";
inline constexpr std::string_view mePath = "/api/host/me";
inline constexpr std::string_view agreePath = "/api/host/agree";

/// The page about the service, and the document on it.
inline constexpr std::string_view pagePath = "/";
inline constexpr std::string_view documentPath = "/openapi.yaml";

inline constexpr std::string_view assetsPrefix = "/assets/";
inline constexpr std::string_view assetsSuffix = ".png";
inline constexpr std::string_view brandsPrefix = "/brands/";

/// Whether the path answers with a JSON object.
[[nodiscard]] constexpr bool isEndpoint(std::string_view path) {
    return path == displayPath || path == heartbeatPath || path == mePath || path == agreePath;
}

[[nodiscard]] constexpr bool isAsset(std::string_view path) {
    return path.size() > assetsPrefix.size() + assetsSuffix.size() &&
           path.starts_with(assetsPrefix) && path.ends_with(assetsSuffix);
}

[[nodiscard]] constexpr bool isBrandPage(std::string_view path) {
    return path.size() > brandsPrefix.size() && path.starts_with(brandsPrefix);
}

/// Whether the service knows paths of this form.
[[nodiscard]] constexpr bool isServed(std::string_view path) {
    return isEndpoint(path) || isAsset(path) || isBrandPage(path) || path == pagePath ||
           path == documentPath;
}

} // namespace brimlet::placement
