#include "tests/support/testpaths.h"

namespace brimlet {

QString sourcePath(QStringView path) {
    return QStringLiteral(BRIMLET_SOURCE_DIR "/").append(path);
}

QString programPath(QStringView name) {
    return QStringLiteral(BRIMLET_BIN_DIR "/").append(name);
}

QString samplePath(QStringView path) {
    return QStringLiteral(BRIMLET_CORPORA "/").append(path);
}

} // namespace brimlet
