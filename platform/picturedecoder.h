#pragma once

#include <QByteArray>
#include <QCoroTask>

#include <optional>

namespace brimlet {

/// A decoded picture.
struct Picture final {
    int width = 0;  ///< Pixels, 1 to `kKeptSideLimit`.
    int height = 0; ///< The same.
    /// Premultiplied ARGB, 32 bits a pixel in the machine's byte order, rows from the top without
    /// padding.
    QByteArray pixels;

    bool operator==(const Picture&) const = default;
};

/// Decodes pictures from untrusted bytes. Main thread only.
class PictureDecoder {
public:
    virtual ~PictureDecoder() = default;

    /// Does not block. The task always completes; without a picture on every failure.
    [[nodiscard]] virtual QCoro::Task<std::optional<Picture>> decode(QByteArray bytes) = 0;
};

} // namespace brimlet
