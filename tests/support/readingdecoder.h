#pragma once

#include "picture/picturereading.h"
#include "platform/picturedecoder.h"

namespace brimlet {

/// Decodes in this process, at once. For good pictures only.
class ReadingDecoder final : public PictureDecoder {
public:
    ReadingDecoder() {
        [[maybe_unused]] static const bool isPrepared = (preparePictureReading(), true);
    }
    [[nodiscard]] QCoro::Task<std::optional<Picture>> decode(QByteArray bytes) override {
        ++pictures;
        co_return readPicture(bytes);
    }

    int pictures = 0; ///< How many it was asked for.
};

} // namespace brimlet
