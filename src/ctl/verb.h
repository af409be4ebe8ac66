#pragma once

#include "ctl/commandline.h"
#include "shell/database.h"
#include "shell/refusal.h"

#include <QJsonValue>

#include <memory>
#include <vector>

namespace fenlark::ctl {

// One fenlarkctl verb: its name, a line of help, and what it runs.
struct Verb {
    const char *name;
    const char *usage;
    int (*run)(const CommandLine &args);
};

// The verbs of each subsystem; main() lists them all.
const std::vector<Verb> &shellVerbs();
const std::vector<Verb> &ratesVerbs();
const std::vector<Verb> &recordsVerbs();
const std::vector<Verb> &synchVerbs();
const std::vector<Verb> &bookingVerbs();
const std::vector<Verb> &accountsVerbs();
const std::vector<Verb> &clientVerbs();
const std::vector<Verb> &documentVerbs();
const std::vector<Verb> &reportVerbs();
const std::vector<Verb> &maintenanceVerbs();
// booking dates|room|split: the editor's save and split (the "booking" verb hands them on).
int runBookingChange(const CommandLine &args);
// booking add-room|free-rooms|cancel|cancel-room|checkin|rates: keeping a booking's rooms.
bool isBookingMaintenance(const QString &word);
int runBookingMaintenance(const CommandLine &args);

// The database named by --db, else the configured database of the home folder.
// Prints the reason and returns null when it cannot be opened.
std::unique_ptr<Database> openDatabase(const CommandLine &args);
QString databasePath(const CommandLine &args);

// JSON for machines on stdout; errors on stderr with a non-zero exit.
void printJson(const QJsonValue &value);
int fail(const QString &message, int code = 1);
// A refusal of the core: its text on stderr (in the chosen language) and exit 1.
int refuse(const Refusal &refusal);

} // namespace fenlark::ctl
