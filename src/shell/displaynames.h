#pragma once

#include <QString>

namespace fenlark {

// The full name: title, first name and surname, each trimmed, joined by blanks and
// left-trimmed, with " @ " and the company behind it when there is a company; the
// company alone when there is no name; "<Blank>" when all are empty. Only the
// left side is trimmed, so a first name without a surname keeps its trailing
// blank ("Jo  @ X") and a title without a first name leaves two ("Mr  Smith"):
// the desk has always shown them so. The company is taken as it stands.
QString clientName(const QString &title, const QString &firstName, const QString &surname, const QString &company);
// For one-line lists: the first non-empty of surname, first name, company; else "???".
QString getDisplayName(const QString &firstName, const QString &surname, const QString &company);
// The calendar's label: the first three characters of the display name.
QString getShortName(const QString &firstName, const QString &surname, const QString &company);

} // namespace fenlark
