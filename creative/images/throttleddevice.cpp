#include "creative/images/throttleddevice.h"

#include <algorithm>

namespace brimlet {
namespace {

/// Bytes. A kilobyte of a repetitive GIF, the slowest kind, takes a decoder ten milliseconds.
constexpr qint64 kSlice = 1024;

} // namespace

ThrottledDevice::ThrottledDevice(QByteArrayView bytes, const CpuDeadline& deadline)
    : m_bytes(bytes)
    , m_deadline(deadline) {
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool ThrottledDevice::seek(qint64 position) {
    if (position < 0 || position > m_bytes.size() || !QIODevice::seek(position)) {
        return false;
    }
    m_at = position;
    return true;
}

qint64 ThrottledDevice::readData(char* data, qint64 most) {
    m_hasStopped = m_hasStopped || m_deadline();
    if (m_hasStopped) {
        return -1;
    }
    const qint64 count = std::min({most, kSlice, m_bytes.size() - m_at});
    std::copy_n(m_bytes.data() + m_at, count, data);
    m_at += count;
    return count;
}

qint64 ThrottledDevice::writeData(const char* /*data*/, qint64 /*most*/) {
    return -1;
}

} // namespace brimlet
