#include "creative/images/meteredbytes.h"

#include <algorithm>

namespace brimlet {
namespace {

/// Bytes. The costliest kilobyte, of a GIF that repeats itself, keeps its decoder busy for ten
/// milliseconds.
constexpr qint64 kSlice = 1024;

} // namespace

MeteredBytes::MeteredBytes(QByteArrayView bytes, const WorkBudget& budget)
    : m_bytes(bytes)
    , m_budget(budget) {
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool MeteredBytes::seek(qint64 position) {
    if (position < 0 || position > m_bytes.size() || !QIODevice::seek(position)) {
        return false;
    }
    m_at = position;
    return true;
}

qint64 MeteredBytes::readData(char* data, qint64 most) {
    m_hasStopped = m_hasStopped || m_budget();
    if (m_hasStopped) {
        return -1;
    }
    const qint64 count = std::min({most, kSlice, m_bytes.size() - m_at});
    std::copy_n(m_bytes.data() + m_at, count, data);
    m_at += count;
    return count;
}

qint64 MeteredBytes::writeData(const char* /*data*/, qint64 /*most*/) {
    return -1;
}

} // namespace brimlet
