#include "platform/simulated/memorysecretstore.h"

namespace brimlet {

SecretResult MemorySecretStore::read(const QString& service, const QString& account) {
    const auto item = m_items.constFind({service, account});
    return item == m_items.constEnd() ? SecretResult(SecretError::NotFound) : SecretResult(*item);
}

void MemorySecretStore::remove(const QString& service, const QString& account) {
    m_items.remove({service, account});
}

void MemorySecretStore::add(const QString& service, const QString& account,
                            const QByteArray& value) {
    m_items.insert({service, account}, value);
}

} // namespace brimlet
