#include "creative/images/imagesanitising.h"

#include <algorithm>
#include <array>
#include <vector>

namespace brimlet {
namespace {

/// Files in use have a dozen scans.
constexpr int kScanLimit = 64;
/// The work of all scans together. Its unit is one visit of a scan to a block of 8 by 8 samples for
/// which it has no data: about 5 ns where it was measured. A file of a few hundred bytes can ask
/// for this much after its last byte was read, when the deadline is no longer checked. A photograph
/// of 12 megapixels in the usual ten scans, its colours at half resolution, needs 90 % of it.
constexpr qint64 kVisitLimit = 13'200'000;
/// The cost, in visits, of allocating, smoothing and writing a block whose coefficients are kept.
constexpr qint64 kVisitsOfKeptBlock = 24;
/// The cost, in visits, of a block that is written at once.
constexpr qint64 kVisitsOfPassingBlock = 3;
/// The cost, in visits, of looking for a restart marker.
constexpr qint64 kVisitsOfRestart = 2;
/// Decoders keep all coefficients of a picture that comes in several scans: two bytes for each.
constexpr qint64 kBytesPerKeptBlock = 128;

struct Component final {
    quint8 id = 0;
    qint64 blocks = 0;
};

/// What the frame header says, and what the scans have cost so far.
struct Frame final {
    bool isProgressive = false;
    std::vector<Component> components;
    qint64 blocks = 0;
    int scans = 0;
    qint64 visits = 0;
};

struct Marker final {
    quint8 code = 0;
    /// Of its first byte.
    qsizetype at = 0;
};

/// The next marker at or after this place, fill bytes and restarts passed over; code 0 at the end.
Marker nextMarker(QByteArrayView bytes, qsizetype at) {
    while ((at = bytes.indexOf('\xff', at)) >= 0 && at + 1 < bytes.size()) {
        const quint8 code = byteAt(bytes, at + 1);
        const bool isRestart = code >= 0xd0 && code <= 0xd7;
        if (code != 0 && code != 0xff && code != 0x01 && !isRestart) {
            return {.code = code, .at = at};
        }
        at += code == 0xff ? 1 : 2;
    }
    return {};
}

bool isFrameHeader(quint8 code) {
    return code >= 0xc0 && code <= 0xcf && code != 0xc4 && code != 0xc8 && code != 0xcc;
}

/// Keeps only what decoders need: comments, profiles and thumbnails are left out.
bool isKept(quint8 code, QByteArrayView data) {
    switch (code) {
    case 0xc4: // Huffman tables
    case 0xdb: // quantisation tables
        return true;
    case 0xe0:
        return data.startsWith("JFIF");
    case 0xe1: // says which side is up
        return data.startsWith("Exif");
    case 0xee: // says how colours are meant
        return data.startsWith("Adobe");
    default:
        return false;
    }
}

/// Codings that no decoder here supports, and heights given after the frame header.
bool isRefused(quint8 code) {
    return code == 0xc8 || code == 0xcc || code == 0xdc || code == 0xde || code == 0xdf;
}

std::optional<Frame> readFrame(quint8 code, QByteArrayView data) {
    // Baseline, extended and progressive, all of them Huffman coded with eight bits.
    if (code > 0xc2 || data.size() < 6 || byteAt(data, 0) != 8) {
        return std::nullopt;
    }
    const int height = bigEndian16(data, 1);
    const int width = bigEndian16(data, 3);
    const int count = byteAt(data, 5);
    if (!isAffordable(width, height, 4) || (count != 1 && count != 3 && count != 4) ||
        data.size() != 6 + 3 * count) {
        return std::nullopt;
    }
    int widest = 0;
    int highest = 0;
    for (int i = 0; i < count; ++i) {
        const quint8 sampling = byteAt(data, 7 + 3 * i);
        widest = std::max(widest, sampling >> 4);
        highest = std::max(highest, sampling & 15);
        if (sampling >> 4 < 1 || sampling >> 4 > 4 || (sampling & 15) < 1 || (sampling & 15) > 4) {
            return std::nullopt;
        }
    }
    const qint64 across = (width + 8 * widest - 1) / (8 * widest);
    const qint64 down = (height + 8 * highest - 1) / (8 * highest);
    Frame frame;
    frame.isProgressive = code == 0xc2;
    for (int i = 0; i < count; ++i) {
        const quint8 sampling = byteAt(data, 7 + 3 * i);
        const qint64 blocks = across * (sampling >> 4) * down * (sampling & 15);
        frame.components.push_back({.id = byteAt(data, 6 + 3 * i), .blocks = blocks});
        frame.blocks += blocks;
    }
    return frame;
}

/// Visits of a scan to each block; one that refines earlier ones reads every coefficient.
qint64 visitsOfScan(bool refines, bool isDirect) {
    if (!refines) {
        return 1;
    }
    return isDirect ? 2 : 8;
}

/// Adds what this scan will cost, with a restart after so many blocks, or none. False when it is
/// broken or too much.
bool addScan(Frame& frame, QByteArrayView data, int restartInterval) {
    const int count = data.isEmpty() ? 0 : byteAt(data, 0);
    if (count < 1 || count > 4 || data.size() != 4 + 2 * count || ++frame.scans > kScanLimit) {
        return false;
    }
    const bool isKeptWhole = frame.isProgressive || frame.components.size() > size_t(count);
    if (isKeptWhole && frame.blocks * kBytesPerKeptBlock > kImageMemoryLimit) {
        return false;
    }
    if (frame.scans == 1) {
        frame.visits = frame.blocks * (isKeptWhole ? kVisitsOfKeptBlock : kVisitsOfPassingBlock);
    }
    const bool refines = byteAt(data, data.size() - 1) >> 4 != 0;
    const bool isDirect = byteAt(data, data.size() - 3) == 0;
    for (const Component& component : frame.components) {
        for (int i = 0; i < count; ++i) {
            if (byteAt(data, 1 + 2 * i) == component.id) {
                frame.visits += component.blocks * visitsOfScan(refines, isDirect);
                frame.visits += restartInterval == 0
                                    ? 0
                                    : component.blocks / restartInterval * kVisitsOfRestart;
            }
        }
    }
    return frame.visits <= kVisitLimit;
}

} // namespace

std::optional<SanitisedImage> sanitiseJpeg(QByteArrayView bytes) {
    SanitisedImage image;
    std::optional<Frame> frame;
    int restartInterval = 0;
    image.body.reserve(bytes.size());
    image.body.append(bytes.first(2));
    std::array<bool, 256> isSeen{};
    for (Marker marker = nextMarker(bytes, 2); marker.code != 0;) {
        if (marker.code == 0xd9) {
            image.body.append(bytes.sliced(marker.at, 2));
            return frame && frame->scans > 0 ? std::optional(std::move(image)) : std::nullopt;
        }
        const qsizetype left = bytes.size() - marker.at - 2;
        const qsizetype length = left < 2 ? 0 : bigEndian16(bytes, marker.at + 2);
        if (length < 2 || length > left || isRefused(marker.code)) {
            return std::nullopt;
        }
        const QByteArrayView segment = bytes.sliced(marker.at, 2 + length);
        const QByteArrayView data = segment.sliced(4);
        const Marker next = nextMarker(bytes, marker.at + segment.size());
        const bool isApplication = marker.code >= 0xe0 && marker.code <= 0xef;
        if (isFrameHeader(marker.code)) {
            if (frame || !(frame = readFrame(marker.code, data))) {
                return std::nullopt;
            }
            image.facts = {.format = ImageFormat::Jpeg,
                           .width = bigEndian16(data, 3),
                           .height = bigEndian16(data, 1)};
            image.frame = QRect(0, 0, image.facts.width, image.facts.height);
            image.body.append(segment);
        } else if (marker.code == 0xda) {
            if (!frame || !addScan(*frame, data, restartInterval) || next.code == 0) {
                return std::nullopt;
            }
            image.body.append(bytes.sliced(marker.at, next.at - marker.at));
        } else if (marker.code == 0xdd) {
            if (data.size() != 2) {
                return std::nullopt;
            }
            restartInterval = bigEndian16(data, 0);
            image.body.append(segment);
        } else if (isKept(marker.code, data) && !(isApplication && isSeen[marker.code])) {
            isSeen[marker.code] = true;
            image.body.append(segment);
        }
        marker = next;
    }
    return std::nullopt;
}

} // namespace brimlet
