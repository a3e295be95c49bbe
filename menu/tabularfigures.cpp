#include "menu/tabularfigures.h"

#include <QRawFont>

#if QT_VERSION < QT_VERSION_CHECK(6, 7, 0)
#include <hb.h>

#include <algorithm>
#include <memory>
#endif

namespace brimlet {

#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)

void preferTabularFigures(QFont& font) {
    font.setFeature("tnum", 1);
}

QList<quint32> tabularFigures(const QFont& /*font*/) {
    return {};
}

#else

namespace {

template <auto function>
struct CalledBy final {
    template <typename Object>
    void operator()(Object* object) const {
        function(object);
    }
};

bool haveEqualWidths(const QRawFont& font, const QList<quint32>& glyphs) {
    const QList<QPointF> widths = font.advancesForGlyphIndexes(glyphs);
    return std::all_of(widths.begin(), widths.end(),
                       [&](QPointF each) { return qFuzzyCompare(each.x(), widths.first().x()); });
}

/// The font's table of that name, owned by the blob.
hb_blob_t* tableOf(hb_face_t* /*face*/, hb_tag_t name, void* font) {
    const char tag[] = {static_cast<char>(name >> 24U), static_cast<char>(name >> 16U),
                        static_cast<char>(name >> 8U), static_cast<char>(name), '\0'};
    const QByteArray table = static_cast<const QRawFont*>(font)->fontTable(tag);
    return hb_blob_create(table.constData(), static_cast<unsigned>(table.size()),
                          HB_MEMORY_MODE_DUPLICATE, nullptr, nullptr);
}

} // namespace

void preferTabularFigures(QFont& /*font*/) {}

QList<quint32> tabularFigures(const QFont& font) {
    QRawFont raw = QRawFont::fromFont(font);
    const QString digits = QStringLiteral("0123456789");
    if (haveEqualWidths(raw, raw.glyphIndexesForString(digits))) {
        return {};
    }
    const std::unique_ptr<hb_face_t, CalledBy<hb_face_destroy>> face(
        hb_face_create_for_tables(tableOf, &raw, nullptr));
    const std::unique_ptr<hb_font_t, CalledBy<hb_font_destroy>> shaper(hb_font_create(face.get()));
    const std::unique_ptr<hb_buffer_t, CalledBy<hb_buffer_destroy>> buffer(hb_buffer_create());
    hb_buffer_add_utf16(buffer.get(), digits.utf16(), 10, 0, 10);
    hb_buffer_guess_segment_properties(buffer.get());
    const hb_feature_t tabular{HB_TAG('t', 'n', 'u', 'm'), 1, HB_FEATURE_GLOBAL_START,
                               HB_FEATURE_GLOBAL_END};
    hb_shape(shaper.get(), buffer.get(), &tabular, 1);
    unsigned count = 0;
    const hb_glyph_info_t* const shaped = hb_buffer_get_glyph_infos(buffer.get(), &count);
    QList<quint32> glyphs;
    for (unsigned i = 0; i < count; ++i) {
        glyphs << shaped[i].codepoint;
    }
    return count == 10 && haveEqualWidths(raw, glyphs) ? glyphs : QList<quint32>();
}

#endif

} // namespace brimlet
