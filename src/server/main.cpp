#include "server/httpfront.h"
#include "server/referenceserver.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QHostAddress>

#include <algorithm>
#include <cstdio>

#include <sys/resource.h>

using namespace fenlark;
using namespace fenlark::server;

namespace {

int usage()
{
    std::fprintf(stderr,
                 "usage: fenlark-server COMMAND --db FILE [options]\n\n"
                 "  serve [--port N] [--host ADDRESS] [--seed DESKDB] [--stall-ms N] [--workers N]\n"
                 "                        answer the desk's synchronisation on HTTP (prints \"listening on PORT\");\n"
                 "                        admin commands (POST /admin/...) need the token it writes to FILE.token\n"
                 "  create-property --bbid N --password P [--name NAME]\n"
                 "  seed --desk DESKDB    the property and setup tables of a desk database\n"
                 "  add-booking --bbid N --room R [--from yyyy-MM-dd] [--nights N] [--surname S] [--rate X]\n"
                 "  edit --bbid N --table T --tableid ID --set COLUMN=VALUE [--set ...]\n"
                 "  delete --bbid N --table T --tableid ID\n"
                 "  set-setup --bbid N --table T --rows JSON\n"
                 "  offer-upgrade --version V --package FILE [--notes TEXT]\n"
                 "                        offer a release for upgrade (--version \"\" withdraws it)\n"
                 "  fault --name drop|stall|garbled|truncated|fail|duplicate-acks|shuffle|none [--count N, -1 for always]\n");
    return 2;
}

struct Options {
    QHash<QString, QString> values;
    QStringList sets;
    QString value(const char *key, const QString &fallback = {}) const { return values.value(QLatin1String(key), fallback); }
};

Options parse(const QStringList &args)
{
    Options o;
    for (int i = 0; i + 1 < args.size(); i += 2) {
        QString key = args[i];
        if (!key.startsWith(QLatin1String("--")))
            throw ServerError(QStringLiteral("unexpected argument %1").arg(key));
        key = key.mid(2);
        if (key == QLatin1String("set"))
            o.sets << args[i + 1];
        else
            o.values.insert(key, args[i + 1]);
    }
    if (args.size() % 2 != 0)
        throw ServerError(QStringLiteral("%1 needs a value").arg(args.last()));
    return o;
}

// As many connections as the process may hold files, less a margin for its own;
// the soft limit is raised to the hard one first.
int connectionCap()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return 900;
    if (limit.rlim_cur < limit.rlim_max) {
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 65536);
        setrlimit(RLIMIT_NOFILE, &limit);
        getrlimit(RLIMIT_NOFILE, &limit);
    }
    return static_cast<int>(std::clamp<rlim_t>(limit.rlim_cur, 128, 10064) - 64);
}

void print(const QString &text)
{
    std::fprintf(stdout, "%s\n", qUtf8Printable(text));
    std::fflush(stdout);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    if (args.isEmpty())
        return usage();
    const QString command = args.takeFirst();
    try {
        const Options o = parse(args);
        const QString path = o.value("db");
        if (path.isEmpty())
            return usage();
        ReferenceServer store(path);
        const qint32 bbid = o.value("bbid").toInt();
        if (command == QLatin1String("serve")) {
            // Committed before the first connection is taken.
            if (!o.value("seed").isEmpty())
                store.seedFromDesk(o.value("seed"));
            HttpFront front(path);
            if (!o.value("stall-ms").isEmpty())
                front.setStallMs(o.value("stall-ms").toInt());
            front.setWorkers(std::max(1, o.value("workers", QStringLiteral("2")).toInt()));
            front.setMaxConnections(connectionCap());
            const QHostAddress host(o.value("host", QStringLiteral("127.0.0.1")));
            const quint16 port = front.listen(host, static_cast<quint16>(o.value("port", QStringLiteral("0")).toUInt()));
            if (port == 0) {
                std::fprintf(stderr, "fenlark-server: cannot listen on %s\n", qUtf8Printable(o.value("port")));
                return 1;
            }
            print(QStringLiteral("listening on %1").arg(port));
            return app.exec();
        }
        if (command == QLatin1String("create-property")) {
            store.createProperty(bbid, o.value("password"), o.value("name"));
        } else if (command == QLatin1String("seed")) {
            print(QStringLiteral("{\"bbid\":%1}").arg(store.seedFromDesk(o.value("desk"))));
        } else if (command == QLatin1String("add-booking")) {
            OnlineBooking b;
            b.roomId = o.value("room").toInt();
            b.fromDate = QDate::fromString(o.value("from", QDate::currentDate().addDays(7).toString(Qt::ISODate)), Qt::ISODate);
            b.nights = o.value("nights", QStringLiteral("2")).toInt();
            b.surname = o.value("surname", b.surname);
            b.rate = o.value("rate", QStringLiteral("100")).toDouble();
            const OnlineBookingIds ids = store.addOnlineBooking(bbid, b);
            print(QStringLiteral("{\"booking\":%1,\"guest\":%2,\"client\":%3,\"account\":%4}")
                      .arg(ids.booking).arg(ids.guest).arg(ids.client).arg(ids.account));
        } else if (command == QLatin1String("edit")) {
            JsonObject changes;
            for (const QString &set : o.sets) {
                const qsizetype eq = set.indexOf(QLatin1Char('='));
                if (eq <= 0)
                    throw ServerError(QStringLiteral("--set takes COLUMN=VALUE"));
                const QString text = set.mid(eq + 1);
                bool isNumber = false;
                const double number = text.toDouble(&isNumber);
                changes.set(set.left(eq), isNumber ? (number == static_cast<qint32>(number) ? JsonValue(static_cast<qint32>(number)) : JsonValue(number))
                                                   : JsonValue(text));
            }
            store.editRow(bbid, o.value("table"), o.value("tableid").toInt(), changes);
        } else if (command == QLatin1String("delete")) {
            store.deleteRow(bbid, o.value("table"), o.value("tableid").toInt());
        } else if (command == QLatin1String("set-setup")) {
            store.setSetupTable(bbid, o.value("table"), json::parse(o.value("rows")));
        } else if (command == QLatin1String("offer-upgrade")) {
            UpgradeRelease release;
            release.version = o.value("version");
            release.notes = o.value("notes");
            if (!release.version.isEmpty()) {
                QFile package(o.value("package"));
                if (!package.open(QIODevice::ReadOnly))
                    throw ServerError(QStringLiteral("cannot read the package %1").arg(package.fileName()));
                release.package = QFileInfo(package.fileName()).fileName();
                release.bytes = package.readAll();
            }
            store.offerUpgrade(release);
        } else if (command == QLatin1String("fault")) {
            store.setFault(o.value("name"), o.value("count", QStringLiteral("1")).toInt());
        } else {
            return usage();
        }
    } catch (const ServerError &e) {
        std::fprintf(stderr, "fenlark-server: %s\n", e.what());
        return 1;
    }
    return 0;
}
