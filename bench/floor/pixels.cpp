#include "bench/floor/pixels.h"

#include <algorithm>
#include <array>
#include <cuchar>
#include <stdexcept>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace brimlet {
namespace {

/// FreeType with one font, as long as a text is drawn.
class Font final {
public:
    Font() {
        if (FT_Init_FreeType(&m_library) != 0 || !loadFace()) {
            throw std::runtime_error("there is no font");
        }
        FT_Set_Pixel_Sizes(m_face, 0, 12);
    }
    ~Font() { FT_Done_FreeType(m_library); } // and the face with it
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    /// The letter as coverage; valid until the next one.
    [[nodiscard]] FT_GlyphSlot letter(char32_t character) {
        constexpr FT_Int32 kLightlyHinted = FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT;
        return FT_Load_Char(m_face, character, kLightlyHinted) == 0 ? m_face->glyph : nullptr;
    }
    /// Pixels from the line's top to its baseline, when it is centred in this height.
    [[nodiscard]] int baseline(int height) const {
        const FT_Size_Metrics& metrics = m_face->size->metrics;
        return static_cast<int>((64L * height + metrics.ascender + metrics.descender) / 2 + 32) /
               64;
    }

private:
    [[nodiscard]] bool loadFace() {
        constexpr std::array kFiles{"/usr/share/fonts/opentype/inter/Inter-SemiBold.otf",
                                    "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"};
        return std::any_of(kFiles.begin(), kFiles.end(), [this](const char* file) {
            return FT_New_Face(m_library, file, 0, &m_face) == 0;
        });
    }

    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
};

/// Of bytes that are no text, what comes before them; at most as much as the program lays out.
std::u32string charactersOf(const std::string& utf8) {
    constexpr std::size_t kLongest = 1024;
    std::u32string characters;
    std::mbstate_t state{};
    const char* at = utf8.data();
    const char* const end = at + utf8.size();
    while (at < end && characters.size() < kLongest) {
        char32_t character = 0;
        const std::size_t used =
            std::mbrtoc32(&character, at, static_cast<std::size_t>(end - at), &state);
        if (used == 0 || used > utf8.size()) {
            break;
        }
        characters += character;
        at += used;
    }
    return characters;
}

/// White over the ground, by how much of the pixel it covers.
std::uint32_t blended(std::uint32_t coverage) {
    const std::uint32_t alpha = coverage + (255 - coverage) * (kGround >> 24U) / 255;
    return alpha << 24U | coverage << 16U | coverage << 8U | coverage;
}

void draw(FT_GlyphSlot letter, int left, int baseline, Pixels& pixels) {
    const FT_Bitmap& bitmap = letter->bitmap;
    for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
        for (int column = 0; column < static_cast<int>(bitmap.width); ++column) {
            const int x = left + letter->bitmap_left + column;
            const int y = baseline - letter->bitmap_top + row;
            const std::uint32_t coverage = bitmap.buffer[row * bitmap.pitch + column];
            if (coverage != 0 && x >= 0 && x < pixels.width && y >= 0 && y < pixels.height) {
                pixels.at(x, y) = std::max(pixels.at(x, y), blended(coverage));
            }
        }
    }
}

} // namespace

Pixels textPixels(const std::string& utf8, int leastWidth, int height) {
    Font font;
    const std::u32string characters = charactersOf(utf8);
    FT_Fixed width = 0;
    for (const char32_t character : characters) {
        const auto* const letter = font.letter(character);
        width += letter != nullptr ? letter->linearHoriAdvance : 0;
    }
    const int wholeWidth = static_cast<int>((width + 0xFFFF) >> 16);
    Pixels pixels(std::max(wholeWidth, leastWidth), height, kGround);
    FT_Fixed left = 0;
    for (const char32_t character : characters) {
        if (auto* const letter = font.letter(character)) {
            draw(letter, static_cast<int>(left >> 16), font.baseline(height), pixels);
            left += letter->linearHoriAdvance;
        }
    }
    return pixels;
}

} // namespace brimlet
