#include "host/utf8.h"

#include <QStringDecoder>

namespace brimlet {

std::optional<QString> textFromUtf8(std::string_view bytes) {
    using Flag = QStringConverter::Flag;
    QStringDecoder decoder(QStringConverter::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    QString text = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

} // namespace brimlet
