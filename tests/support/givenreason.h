#pragma once

#include "shell/security.h"

// Answers the reason box as a person would, with the reason given, for as long
// as it lives.
class GivenReason : public fenlark::ReasonPrompt {
public:
    explicit GivenReason(QString reason = QStringLiteral("broken glass")) : m_reason(std::move(reason))
    {
        fenlark::SecurityAudit::setPrompt(this);
    }
    ~GivenReason() override { fenlark::SecurityAudit::setPrompt(nullptr); }
    std::optional<QString> askReason(const QString &, const QString &) override { return m_reason; }

private:
    QString m_reason;
};
