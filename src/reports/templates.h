#pragma once

#include <QString>
#include <QStringList>

namespace fenlark {

// The template of a stem ("invoice", "Confirmation") for a database: the stem, the
// database number when it is not 0, and the first of the extensions that exists in
// the template folder (TemplateDir). When the template folder is the home folder and
// holds no such file, Fenlark's own template in the current language is copied there
// first; a property replaces it with its own by putting its file in its place. The
// result is the path looked for (with the first extension) when there is none.
QString findTemplate(const QString &stem, int dbNumber, const QStringList &extensions);

// Fenlark's own template of that stem and extension in the current language: the
// installed copy in the data folder when there is one, else the compiled-in
// resource; empty when none ships.
QString shippedTemplate(const QString &stem, const QString &extension);

} // namespace fenlark
