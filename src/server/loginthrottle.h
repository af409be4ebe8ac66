#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>

namespace fenlark::server {

// Slows down password guessing: after a few failed log-ons from one address, that
// address must wait before its next attempt is even looked at, twice as long after
// each further failure (up to a minute). A good log-on clears its record.
class LoginThrottle {
public:
    static constexpr int FreeFailures = 5;
    static constexpr qint64 MaxWaitMs = 60 * 1000;

    // Milliseconds the address must still wait; 0 when it may try.
    qint64 waitFor(const QString &address, const QDateTime &now = QDateTime::currentDateTimeUtc()) const;
    void failed(const QString &address, const QDateTime &now = QDateTime::currentDateTimeUtc());
    void succeeded(const QString &address);

private:
    // Records older than this are forgotten; so is the oldest one past MaxAddresses.
    static constexpr qint64 ForgetAfterMs = 15 * 60 * 1000;
    static constexpr int MaxAddresses = 10000;

    struct Record {
        int failures = 0;
        QDateTime last;
        QDateTime blockedUntil;
    };
    QHash<QString, Record> m_records;
};

} // namespace fenlark::server
