#pragma once

#include "creative/images/cpudeadline.h"

#include <QByteArrayView>
#include <QIODevice>

namespace brimlet {

/// Returns bytes in small slices, and no more once a deadline has passed: the only way to stop a
/// decoder that cannot be interrupted. Opened by its constructor. Bytes and deadline outlive it.
class ThrottledDevice final : public QIODevice {
public:
    ThrottledDevice(QByteArrayView bytes, const CpuDeadline& deadline);

    /// True once bytes were withheld: what was decoded from the others is incomplete.
    [[nodiscard]] bool hasStopped() const { return m_hasStopped; }

    [[nodiscard]] qint64 size() const override { return m_bytes.size(); }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char* data, qint64 most) override;
    qint64 writeData(const char* data, qint64 most) override;

private:
    QByteArrayView m_bytes;
    const CpuDeadline& m_deadline;
    qint64 m_at = 0;
    bool m_hasStopped = false;
};

} // namespace brimlet
