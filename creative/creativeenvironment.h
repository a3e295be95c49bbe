#pragma once

namespace brimlet {

class Clock;
class CreativeImageCache;
class ReduceMotion;

/// What the views of creatives share. The references outlive the views.
struct CreativeEnvironment final {
    CreativeImageCache& images;
    Clock& clock;
    ReduceMotion& reduceMotion;
};

} // namespace brimlet
