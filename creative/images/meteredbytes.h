#pragma once

#include "creative/images/workbudget.h"

#include <QByteArrayView>
#include <QIODevice>

namespace brimlet {

/// Hands bytes out in small slices and stops for good once a budget is spent: the only way to end
/// a decoder that has no brake of its own. Open from the start; bytes and budget must outlive it.
class MeteredBytes final : public QIODevice {
public:
    MeteredBytes(QByteArrayView bytes, const WorkBudget& budget);

    /// True once bytes were withheld; whatever was made of the others is not to be trusted.
    [[nodiscard]] bool hasStopped() const { return m_hasStopped; }

    [[nodiscard]] qint64 size() const override { return m_bytes.size(); }
    bool seek(qint64 position) override;

protected:
    qint64 readData(char* data, qint64 most) override;
    qint64 writeData(const char* data, qint64 most) override;

private:
    QByteArrayView m_bytes;
    const WorkBudget& m_budget;
    qint64 m_at = 0;
    bool m_hasStopped = false;
};

} // namespace brimlet
