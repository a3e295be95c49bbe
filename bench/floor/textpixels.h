#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cuchar>
#include <stdexcept>
#include <string>
#include <vector>

#include <ft2build.h>
#include FT_FREETYPE_H

namespace brimlet {

/// Black at opacity 0.96, as behind the program's texts.
inline constexpr std::uint32_t kBackground = 245U << 24U;

/// A text in white on the background as the X server takes it: premultiplied ARGB, row by row.
/// Centred vertically, at least `leastWidth` wide, letter by letter from left to right, without
/// kerning or shaping. The font is not kept.
class TextPixels final {
public:
    TextPixels(const std::string& utf8, int leastWidth, int height)
        : m_height(height) {
        if (FT_Init_FreeType(&m_library) != 0 || !loadFace()) {
            throw std::runtime_error("there is no font");
        }
        FT_Set_Pixel_Sizes(m_face, 0, 12);
        const std::u32string characters = charactersOf(utf8);
        FT_Fixed width = 0;
        for (const char32_t character : characters) {
            width += load(character) ? m_face->glyph->linearHoriAdvance : 0;
        }
        m_width = std::max(static_cast<int>((width + 0xFFFF) >> 16), leastWidth);
        m_values.assign(std::size_t(m_width) * std::size_t(m_height), kBackground);
        FT_Fixed left = 0;
        for (const char32_t character : characters) {
            if (load(character)) {
                draw(static_cast<int>(left >> 16));
                left += m_face->glyph->linearHoriAdvance;
            }
        }
        FT_Done_FreeType(m_library); // with the face
    }
    TextPixels(const TextPixels&) = delete;
    TextPixels& operator=(const TextPixels&) = delete;

    [[nodiscard]] int width() const { return m_width; }
    [[nodiscard]] int height() const { return m_height; }
    [[nodiscard]] const std::vector<std::uint32_t>& values() const { return m_values; }

private:
    [[nodiscard]] bool loadFace() {
        constexpr std::array kFiles{"/usr/share/fonts/opentype/inter/Inter-SemiBold.otf",
                                    "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"};
        return std::any_of(kFiles.begin(), kFiles.end(), [this](const char* file) {
            return FT_New_Face(m_library, file, 0, &m_face) == 0;
        });
    }
    /// Renders a letter into the face's glyph, as coverage.
    [[nodiscard]] bool load(char32_t character) {
        return FT_Load_Char(m_face, character, FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT) == 0;
    }
    /// Up to the first byte that is no UTF-8; at most as much as the program lays out.
    [[nodiscard]] static std::u32string charactersOf(const std::string& utf8) {
        constexpr std::size_t kLongest = 1024;
        std::u32string characters;
        std::mbstate_t state{};
        for (std::size_t at = 0; at < utf8.size() && characters.size() < kLongest;) {
            char32_t character = 0;
            const auto used = std::mbrtoc32(&character, utf8.data() + at, utf8.size() - at, &state);
            if (used == 0 || used > utf8.size()) {
                break;
            }
            characters += character;
            at += used;
        }
        return characters;
    }
    void draw(int left) {
        const FT_Size_Metrics& metrics = m_face->size->metrics;
        const auto baseline =
            static_cast<int>((64L * m_height + metrics.ascender + metrics.descender) / 2 + 32) / 64;
        const FT_Bitmap& bitmap = m_face->glyph->bitmap;
        for (int row = 0; row < static_cast<int>(bitmap.rows); ++row) {
            for (int column = 0; column < static_cast<int>(bitmap.width); ++column) {
                const int x = left + m_face->glyph->bitmap_left + column;
                const int y = baseline - m_face->glyph->bitmap_top + row;
                const std::uint32_t coverage = bitmap.buffer[row * bitmap.pitch + column];
                if (coverage != 0 && x >= 0 && x < m_width && y >= 0 && y < m_height) {
                    auto& value = m_values[std::size_t(y) * std::size_t(m_width) + std::size_t(x)];
                    value = std::max(value, blended(coverage));
                }
            }
        }
    }
    /// White over the background.
    [[nodiscard]] static std::uint32_t blended(std::uint32_t coverage) {
        const std::uint32_t alpha = coverage + (255 - coverage) * (kBackground >> 24U) / 255;
        return alpha << 24U | coverage << 16U | coverage << 8U | coverage;
    }

    FT_Library m_library = nullptr;
    FT_Face m_face = nullptr;
    int m_width = 0;
    int m_height;
    std::vector<std::uint32_t> m_values;
};

} // namespace brimlet
