#pragma once

// Drives random sequences of money operations through the core (bookings and
// their date and room changes, extras, payments, allocations, invoices, pro
// formas, re-opens, manual ledger entries, moves between accounts and clients,
// the validators, changes from the server) and checks after every step that
// every amount on accounts, in the ledger and on invoices still agrees. A
// failure is cut down to the shortest sequence that still fails, for replay.

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace fenlark {
class Database;
}

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
    QStringList errors;   // database errors met by runOn()
    // "add extra 40/2, ..." : operations done and refused by kind.
    QString summary() const;
};

// Runs `steps` operations chosen from `seed` on a fresh property.
Outcome simulate(unsigned seed, int steps);

// Runs the given steps on a fresh property; what broke, if anything.
std::optional<QString> replay(const std::vector<Step> &steps);

// What breaking every write of every operation found.
struct WriteFailureRun {
    std::vector<int> operations;    // per kind: operations that wrote at least once
    std::vector<int> mostWrites;    // per kind: the most rows one operation wrote
    std::vector<int> failures;      // per kind: failures injected
    std::optional<QString> failure; // the first operation that left a trace of a failed write
    // "new booking 12 ops, up to 31 writes, 240 failures; ..."
    QString summary() const;
};

// Runs the same operations as simulate(seed, steps), but before each one is let
// through it is made to fail at each of its row writes in turn; after every
// failure the database must be exactly as before, with no transaction left open.
WriteFailureRun failEveryWrite(unsigned seed, int steps);

// For a test that kills a process in the middle of its writes: the property of
// the simulation copied to path; operations from seed run on it, round after
// round, until the process is killed ("writing" on stdout once it has begun);
// and the invariants of accounts, ledger and invoices checked on what is left.
void prepareProperty(const QString &path);
[[noreturn]] void writeUntilKilled(const QString &path, unsigned seed);
std::optional<QString> checkProperty(const QString &path);
// Runs the operations of simulate(seed, steps) on the database at path, which
// another process may be writing too; done[0] counts the new bookings made.
// With a real server, synchronise runs after every step with the steps run so
// far, and the steps that play the server's part are left to it.
Outcome runOn(const QString &path, unsigned seed, int steps,
              const std::function<void(fenlark::Database &, int)> &synchronise = {});

} // namespace moneysim
