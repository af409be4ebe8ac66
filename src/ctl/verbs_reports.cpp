#include "ctl/options.h"
#include "ctl/verb.h"

#include "reports/reportcatalogue.h"
#include "reports/reporttsv.h"
#include "reports/reportxlsx.h"
#include "shell/progressline.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QSet>

#include <cmath>

namespace fenlark::ctl {

namespace {

const char Usage[] = "usage: report N [--db PATH] [--from YYYY-MM-DD] [--to YYYY-MM-DD] [--orientation P|L] "
                     "[--client-type I|C|T|O] [--field-type X --field-value V] [--tran-type INV|PMT|CRN|JNL] "
                     "[--tran-no N] [--reference TEXT] [--amount X] --out FILE.xlsx|FILE.tsv";

// The options each report takes beyond --db and --out.
QSet<QString> optionsOf(int number)
{
    QSet<QString> options{QStringLiteral("db"), QStringLiteral("out")};
    const CriteriaForm form = criteriaForm(number);
    if (form != CriteriaForm::ClientSearch)
        options << QStringLiteral("from");
    if (takesToDate(number))
        options << QStringLiteral("to");
    if (takesOrientation(number))
        options << QStringLiteral("orientation");
    if (form == CriteriaForm::ClientSearch)
        options << QStringLiteral("client-type") << QStringLiteral("field-type") << QStringLiteral("field-value");
    if (form == CriteriaForm::TransactionSearch)
        options << QStringLiteral("tran-type") << QStringLiteral("tran-no") << QStringLiteral("reference")
                << QStringLiteral("amount");
    return options;
}

// The criteria from the options over the report's own defaults; false (after
// saying why) on an option that cannot be read.
bool readCriteria(const CommandLine &args, ReportCriteria &criteria)
{
    const auto from = dateOption(args, QStringLiteral("from"), criteria.from);
    const auto to = from ? dateOption(args, QStringLiteral("to"), criteria.to) : std::nullopt;
    if (!from || !to)
        return false;
    criteria.from = *from;
    criteria.to = *to;
    criteria.clientType = args.option(QStringLiteral("client-type")).toUpper();
    criteria.fieldType = args.option(QStringLiteral("field-type")).toUpper();
    criteria.fieldValue = args.option(QStringLiteral("field-value"));
    if (criteria.fieldType.isEmpty() != !args.has(QStringLiteral("field-value"))) {
        fail(QStringLiteral("--field-type and --field-value go together"));
        return false;
    }
    criteria.tranType = args.option(QStringLiteral("tran-type")).toUpper();
    criteria.reference = args.option(QStringLiteral("reference"));
    if (args.has(QStringLiteral("tran-no"))) {
        bool ok = false;
        const int tranNo = args.option(QStringLiteral("tran-no")).toInt(&ok);
        if (!ok) {
            fail(QStringLiteral("--tran-no must be a whole number"));
            return false;
        }
        criteria.tranNo = tranNo;
    }
    if (args.has(QStringLiteral("amount"))) {
        bool ok = false;
        const double amount = args.option(QStringLiteral("amount")).toDouble(&ok);
        if (!ok || !std::isfinite(amount)) {
            fail(QStringLiteral("--amount must be a number"));
            return false;
        }
        criteria.amount = amount;
    }
    return true;
}

int runReportVerb(const CommandLine &args)
{
    const QStringList words = args.positional();
    bool ok = false;
    const int number = words.size() == 1 ? words.first().toInt(&ok) : 0;
    if (!ok || number < report::First || number > report::Last)
        return fail(QString::fromLatin1(Usage));
    const QSet<QString> accepted = optionsOf(number);
    for (const QString &name : args.names()) {
        if (!accepted.contains(name))
            return fail(QStringLiteral("report %1 (%2) does not take --%3").arg(number).arg(reportName(number), name));
    }
    const QString out = args.option(QStringLiteral("out"));
    const QString suffix = QFileInfo(out).suffix().toLower();
    if (out.isEmpty() || (suffix != QLatin1String("xlsx") && suffix != QLatin1String("tsv")))
        return fail(QStringLiteral("--out must name a .xlsx or .tsv file"));

    auto db = openDatabase(args);
    if (!db)
        return 1;
    // The orientation decides the Calendar Printout's default dates, as in the dialog.
    const QString given = args.option(QStringLiteral("orientation")).toUpper();
    const QChar orientation = !args.has(QStringLiteral("orientation")) ? rememberedOrientation(*db)
                              : given.size() == 1                      ? given.at(0)
                                                                       : QLatin1Char('?');
    ReportCriteria criteria = defaultCriteria(number, QDate::currentDate(), orientation);
    if (!readCriteria(args, criteria))
        return 1;
    // A printout from a given day runs a fortnight (landscape) or to the end of that month (portrait).
    if (takesOrientation(number) && args.has(QStringLiteral("from")) && !args.has(QStringLiteral("to")))
        criteria.to = defaultCriteria(number, criteria.from, orientation).to;
    const auto sheet = runReport(*db, number, criteria);
    if (!sheet)
        return fail(sheet.refusal().text());
    Outcome written = Done{};
    if (suffix == QLatin1String("xlsx")) {
        ProgressLine line;
        written = writeReportXlsx(*sheet, out, line.progress());
    } else {
        written = writeReportTsv(*sheet, out);
    }
    if (!written)
        return fail(written.refusal().text());
    printJson(QJsonObject{{"report", number},
                          {"name", reportName(number)},
                          {"title", sheet->title()},
                          {"rows", sheet->dataRows()},
                          {"file", QFileInfo(out).absoluteFilePath()}});
    return 0;
}

} // namespace

const std::vector<Verb> &reportVerbs()
{
    static const std::vector<Verb> verbs = {
        {"report",
         "report N [--db PATH] [--from YYYY-MM-DD] [--to YYYY-MM-DD] [--orientation P|L] [--client-type I|C|T|O] "
         "[--field-type X --field-value V] [--tran-type T] [--tran-no N] [--reference R] [--amount X] "
         "--out FILE.xlsx|FILE.tsv   report N (1-12) as a workbook or tab-separated text",
         runReportVerb},
    };
    return verbs;
}

} // namespace fenlark::ctl
