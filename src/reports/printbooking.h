#pragma once

#include "shell/refusal.h"

#include <QHash>
#include <QString>

#include <vector>

namespace fenlark {

class Database;
class RateData;

enum class LetterKind { Confirmation, Registration };

// The bookmarks of a booking letter and their values: the booking's own (named in
// the current language), then the Registration's for one room or the Confirmation's
// four lists. Refused when the booking, or the room's guest, cannot be read.
Result<QHash<QString, QString>> letterBookmarks(Database &db, const RateData &rates, LetterKind kind, qint32 bookingId,
                                                qint32 roomId);

// The plain-text summary of a booking, line by line.
Result<QString> bookingSummaryText(Database &db, qint32 bookingId);

// A letter written for a booking.
struct PrintedLetter {
    QString path;
    QString email;   // the booker's e-mail, for the clipboard of a Confirmation
};

// Booking letters from the property's Confirmation and Registration templates, and
// the plain-text summary. Letters are written into a folder of their own (by
// default the home folder's "letters", "letters<n>" for database n) and opened by
// the desk for the user to read, change, print or mail.
class PrintBooking {
public:
    PrintBooking(Database &db, const RateData &rates, int dbNumber, QString folder = {});

    // The booking's rooms other than roomId, in the rooms' order: the rooms a
    // Registration offers to print next.
    std::vector<qint32> otherRooms(qint32 bookingId, qint32 roomId);
    // A Confirmation covers the whole booking (roomId is not used); a Registration
    // covers the guest of one room.
    Result<PrintedLetter> printLetter(LetterKind kind, qint32 bookingId, qint32 roomId);
    // Writes the summary into VMWordPad.txt (in the template folder, or the folder
    // given); gives the path.
    Result<QString> printSummary(qint32 bookingId);

    // The template a letter is made from (see findTemplate).
    QString templatePath(LetterKind kind) const;

private:
    Result<QString> outputFolder() const;

    Database &m_db;
    const RateData &m_rates;
    int m_dbNumber;
    QString m_folder;
};

} // namespace fenlark
