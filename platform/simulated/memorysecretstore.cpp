#include "platform/simulated/memorysecretstore.h"

namespace brimlet {

SecretResult MemorySecretStore::read(const QString& service, const QString& account,
                                     LateAnswer /*late*/) {
    const auto item = m_items.constFind({service, account});
    return item == m_items.constEnd() ? SecretResult(SecretError::NotFound) : SecretResult(*item);
}

void MemorySecretStore::replace(const QString& service, const QString& account,
                                const std::optional<QByteArray>& value) {
    m_items.remove({service, account});
    if (value) {
        m_items.insert({service, account}, *value);
    }
}

} // namespace brimlet
