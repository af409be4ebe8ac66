#pragma once

// Drives random sequences of money operations through the core (bookings and
// their date and room changes, extras, payments, allocations, invoices, pro
// formas, re-opens, manual ledger entries, moves between accounts and clients,
// the validators, changes from the server) and checks after every step that
// every amount on accounts, in the ledger and on invoices still agrees. A
// failure is cut down to the shortest sequence that still fails, for replay.

#include <QString>

#include <optional>
#include <vector>

namespace moneysim {

// One operation: what it is and the seed of its own choices.
struct Step {
    int kind = 0;
    quint32 seed = 0;
    QString name() const;
};

struct Failure {
    unsigned seed = 0;
    int failedAt = 0;             // steps run when the invariant broke
    QString message;
    std::vector<Step> shortest;   // a shortest sequence found that still fails
    QString report() const;
};

struct Outcome {
    int stepsRun = 0;
    int refused = 0;   // operations the core refused (expected: bad choices are part of the game)
    std::vector<int> done, refusedByKind;   // per kind of operation
    std::optional<Failure> failure;
    // "add extra 40/2, ..." : operations done and refused by kind.
    QString summary() const;
};

// Runs `steps` operations chosen from `seed` on a fresh property.
Outcome simulate(unsigned seed, int steps);

// Runs the given steps on a fresh property; what broke, if anything.
std::optional<QString> replay(const std::vector<Step> &steps);

} // namespace moneysim
