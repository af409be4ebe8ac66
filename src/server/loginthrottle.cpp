#include "server/loginthrottle.h"

#include <algorithm>

namespace fenlark::server {

qint64 LoginThrottle::waitFor(const QString &address, const QDateTime &now) const
{
    const auto it = m_records.constFind(address);
    if (it == m_records.constEnd() || !it->blockedUntil.isValid())
        return 0;
    return std::max<qint64>(0, now.msecsTo(it->blockedUntil));
}

void LoginThrottle::failed(const QString &address, const QDateTime &now)
{
    auto it = m_records.find(address);
    if (it == m_records.end()) {
        if (m_records.size() >= MaxAddresses) {
            auto oldest = std::min_element(m_records.begin(), m_records.end(),
                                           [](const Record &a, const Record &b) { return a.last < b.last; });
            m_records.erase(oldest);
        }
        it = m_records.insert(address, Record());
    } else if (it->last.msecsTo(now) > ForgetAfterMs) {
        *it = Record();
    }
    it->failures += 1;
    it->last = now;
    if (it->failures >= FreeFailures) {
        const int doublings = std::min(it->failures - FreeFailures, 16);
        it->blockedUntil = now.addMSecs(std::min<qint64>(qint64(1000) << doublings, MaxWaitMs));
    }
}

void LoginThrottle::succeeded(const QString &address)
{
    m_records.remove(address);
}

} // namespace fenlark::server
