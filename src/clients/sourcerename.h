#pragma once

#include "shell/changes.h"
#include "shell/refusal.h"

#include <QString>

#include <optional>
#include <vector>

namespace fenlark {

class Database;
struct UserStruct;

// A marketing source as the renaming lists show it: the source of bookings
// made at this desk (type "P") and how many have it.
struct SourceCount {
    QString source;
    int count = 0;

    // "source ( count )"
    QString text() const;
};

// The sources of "P" bookings, each once with its count, in order of the source.
// The empty source is listed too: renaming it fills in the bookings that had none.
std::vector<SourceCount> sourceCounts(Database &db);

// The question asked before renaming.
class RenameQuestions {
public:
    virtual ~RenameQuestions() = default;
    // "You have chosen to replace: old with new. Are you sure you want to continue?"
    virtual bool confirmReplace(const QString &oldSource, const QString &newSource) = 0;
};

// The question as a Yes/No box through the installed message sink.
class MessageRenameQuestions : public RenameQuestions {
public:
    bool confirmReplace(const QString &oldSource, const QString &newSource) override;
};

// What renaming did. renamed is false when the person at the desk said No.
struct SourceRename {
    bool renamed = false;
    int bookings = 0;
    Changes changes;
};

// The word for the items renamed, in the texts of the renaming screen: "source".
QString sourceItemWord();

// Gives every "P" booking with exactly the old source the new one, each booking
// logged for the server, then notes "Source renamed" in the audit, all in one
// transaction. Bookings of other types keep their source. Refused, writing
// nothing, when no old source is chosen (nullopt: the empty source is one that
// can be chosen), when no new one is, or when the two are the same.
Result<SourceRename> renameSource(Database &db, const UserStruct &user, const std::optional<QString> &oldSource,
                                  const std::optional<QString> &newSource, RenameQuestions &questions);

} // namespace fenlark
