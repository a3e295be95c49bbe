#pragma once

#include "platform/secretstore.h"

#include <QMap>

namespace brimlet {

/// A secret store in memory, lost when the process ends.
class MemorySecretStore final : public SecretStore {
public:
    [[nodiscard]] SecretResult read(const QString& service, const QString& account,
                                    LateAnswer late) override;
    void replace(const QString& service, const QString& account,
                 const std::optional<QByteArray>& value) override;

private:
    QMap<std::pair<QString, QString>, QByteArray> m_items;
};

} // namespace brimlet
