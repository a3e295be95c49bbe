#include "tests/fuzz/imagecheck.h"

#include "tests/picture/readimage.h"

namespace brimlet {

QByteArray checkImage(const QByteArray& input) {
    [[maybe_unused]] static const bool isPrepared = (preparePictureReading(), true);
    const auto picture = readPicture(input);
    return !picture || isProper(*picture) ? "" : "the picture is too large or not premultiplied";
}

} // namespace brimlet
