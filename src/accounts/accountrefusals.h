#pragma once

#include "shell/refusal.h"

namespace fenlark::refusals {

// The refusals several account operations share.

// A typed amount that is not a number ("12,5" in English, "abc").
Refusal notAnAmount(const QString &typed);
// The client an account or ledger row names is not in the database (the server deleted it).
Refusal missingClient(qint32 clientId);
Refusal missingAccount(qint32 accountId);
// An extra that would be added to, changed on or deleted from a closed account.
Refusal extraAccountClosed();
// The user's group lacks the right.
Refusal permissionDenied();

} // namespace fenlark::refusals
