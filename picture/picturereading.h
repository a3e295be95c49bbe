#pragma once

#include "platform/picturedecoder.h"

#include <QByteArray>

#include <optional>

namespace brimlet {

/// The picture these bytes hold: a PNG, JPEG, GIF or WebP, recognised by its first bytes; the first
/// frame, upright, scaled down smoothly to at most `kKeptSideLimit` pixels a side and never up; a
/// colour profile is ignored. Absent when the bytes hold no such picture, end before its first
/// frame does, or exceed `kPictureBytesLimit` or `kPictureSideLimit`. Takes any time and memory.
[[nodiscard]] std::optional<Picture> readPicture(const QByteArray& bytes);

/// Call first: loads Qt's plugins for the formats that it does not read by itself, from
/// `QCoreApplication::libraryPaths()`, and silences all decoders.
void preparePictureReading();

/// Writes and reads a picture in each format, since libraries look up some things the first time,
/// such as the processor's features in a file. Afterwards `readPicture` opens no file, if
/// QImageReader finds no plugins, all of which it would load.
void rehearsePictureReading();

} // namespace brimlet
