#include "picture/confinement.h"
#include "picture/picturereading.h"
#include "platform/picturelimits.h"
#include "platform/picturemessage.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

#include <cstring>

#include <unistd.h>

namespace {

/// All of standard input, as far as a picture may be long, and one byte more.
QByteArray readAll() {
    QByteArray bytes(brimlet::kPictureBytesLimit + 1, Qt::Uninitialized);
    qsizetype length = 0;
    while (length < bytes.size()) {
        const ssize_t count =
            read(STDIN_FILENO, bytes.data() + length, static_cast<size_t>(bytes.size() - length));
        if (count <= 0) {
            break;
        }
        length += count;
    }
    bytes.truncate(length);
    return bytes;
}

bool writeAll(const QByteArray& bytes) {
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count = write(STDOUT_FILENO, bytes.constData() + written,
                                    static_cast<size_t>(bytes.size() - written));
        if (count <= 0) {
            return false;
        }
        written += count;
    }
    return true;
}

} // namespace

/// Started by the program for one picture, with its version as the only argument: decodes the bytes
/// on standard input and writes the pixels to standard output, or nothing.
int main(int argc, char* argv[]) {
    using namespace brimlet;

    if (argc != 2 || std::strcmp(argv[1], BRIMLET_VERSION) != 0) {
        return 2;
    }
#ifdef Q_OS_MACOS
    // In a bundle.
    const QString plugins =
        QFileInfo(QFile::decodeName(argv[0])).path() + QStringLiteral("/../PlugIns");
    if (QFileInfo::exists(plugins)) {
        QCoreApplication::setLibraryPaths({plugins});
    }
#endif
    preparePictureReading();
    QCoreApplication::setLibraryPaths({}); // from here on no other plugin is found
    rehearsePictureReading();
    if (!confineProcess()) {
        return 2;
    }
    const auto picture = readPicture(readAll());
    if (!picture || !writeAll(pictureMessage(*picture))) {
        _exit(1);
    }
    _exit(0); // destructors may do what is forbidden now
}
