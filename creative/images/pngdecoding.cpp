#include "creative/images/imagedecoders.h"
#include "creative/images/pictureshrinker.h"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <vector>

namespace brimlet {
namespace {

/// Bytes.
constexpr qsizetype kSlice = 4096;

/// Shrinks a PNG row by row as its bytes come. On libpng directly, since Qt's decoder lets it
/// print its errors and holds the whole picture.
///
/// Errors leave libpng by a long jump to `feed`: nothing that libpng calls may own anything when
/// it gives up.
class PngDecoder final {
public:
    PngDecoder(QSize size, const CpuDeadline& deadline);
    ~PngDecoder() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngDecoder(const PngDecoder&) = delete;
    PngDecoder& operator=(const PngDecoder&) = delete;

    /// False when the bytes are broken or the deadline has passed; nothing may follow then.
    [[nodiscard]] bool feed(QByteArrayView bytes);
    /// Absent while rows are missing.
    [[nodiscard]] std::optional<QImage> picture() const;

private:
    [[noreturn]] static void fail(png_structp png, png_const_charp message);
    static void ignore(png_structp png, png_const_charp message);
    static void startRows(png_structp png, png_infop info);
    static void addRow(png_structp png, png_bytep row, png_uint_32 y, int pass);
    static void finish(png_structp png, png_infop info);

    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
    const CpuDeadline& m_deadline;
    PictureShrinker m_shrinker;
    std::vector<QRgb> m_row;
    bool m_hasEnded = false;
};

PngDecoder::PngDecoder(QSize size, const CpuDeadline& deadline)
    : m_deadline(deadline)
    , m_shrinker(size)
    , m_row(static_cast<size_t>(size.width())) {
    m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, &fail, &ignore);
    m_info = m_png ? png_create_info_struct(m_png) : nullptr;
    if (m_info) {
        png_set_user_limits(m_png, kImageSideLimit, kImageSideLimit);
        png_set_progressive_read_fn(m_png, this, &startRows, &addRow, &finish);
    }
}

void PngDecoder::fail(png_structp png, png_const_charp /*message*/) {
    png_longjmp(png, 1);
}

void PngDecoder::ignore(png_structp /*png*/, png_const_charp /*message*/) {}

bool PngDecoder::feed(QByteArrayView bytes) {
    if (!m_info || m_deadline()) {
        return false;
    }
    if (setjmp(png_jmpbuf(m_png)) != 0) {
        return false;
    }
    auto* data = const_cast<char*>(bytes.data()); // libpng only reads it
    png_process_data(m_png, m_info, reinterpret_cast<png_bytep>(data),
                     static_cast<size_t>(bytes.size()));
    return true;
}

/// Asks for four bytes a pixel that make a QRgb, whatever the file has. Interlaced rows come as
/// they are, each pixel once.
void PngDecoder::startRows(png_structp png, png_infop info) {
    png_set_expand(png);
    png_set_scale_16(png);
    png_set_gray_to_rgb(png);
    if (QSysInfo::ByteOrder == QSysInfo::LittleEndian) {
        png_set_bgr(png);
        png_set_add_alpha(png, 0xff, PNG_FILLER_AFTER);
    } else {
        png_set_swap_alpha(png);
        png_set_add_alpha(png, 0xff, PNG_FILLER_BEFORE);
    }
    png_read_update_info(png, info);
}

void PngDecoder::addRow(png_structp png, png_bytep row, png_uint_32 y, int pass) {
    auto* decoder = static_cast<PngDecoder*>(png_get_progressive_ptr(png));
    if (!row) {
        return;
    }
    if (decoder->m_deadline()) {
        png_error(png, "out of time");
    }
    const bool isInterlaced = png_get_interlace_type(png, decoder->m_info) != PNG_INTERLACE_NONE;
    const auto width = static_cast<int>(png_get_image_width(png, decoder->m_info));
    const int count = isInterlaced ? PNG_PASS_COLS(width, pass) : width;
    const std::span pixels(decoder->m_row.data(), static_cast<size_t>(count));
    std::memcpy(pixels.data(), row, pixels.size_bytes());
    for (QRgb& pixel : pixels) {
        pixel = qPremultiply(pixel);
    }
    if (isInterlaced) {
        decoder->m_shrinker.add(PNG_ROW_FROM_PASS_ROW(static_cast<int>(y), pass), pixels,
                                PNG_PASS_START_COL(pass), PNG_PASS_COL_OFFSET(pass));
    } else {
        decoder->m_shrinker.add(static_cast<int>(y), pixels);
    }
}

void PngDecoder::finish(png_structp png, png_infop /*info*/) {
    static_cast<PngDecoder*>(png_get_progressive_ptr(png))->m_hasEnded = true;
}

std::optional<QImage> PngDecoder::picture() const {
    return m_hasEnded && m_shrinker.isComplete() ? std::optional(m_shrinker.picture())
                                                 : std::nullopt;
}

} // namespace

std::optional<QImage> decodePng(const SanitisedImage& image, const CpuDeadline& deadline) {
    PngDecoder decoder(QSize(image.facts.width, image.facts.height), deadline);
    for (QByteArrayView rest = image.body; !rest.isEmpty();) {
        const qsizetype count = qMin(kSlice, rest.size());
        if (!decoder.feed(rest.first(count))) {
            return std::nullopt;
        }
        rest = rest.sliced(count);
    }
    return decoder.picture();
}

} // namespace brimlet
