#pragma once

#include "desk/propertygenerator.h"
#include "rates/ratedata.h"
#include "shell/changes.h"
#include "shell/session.h"
#include "support/testdatabase.h"

#include <memory>

// The desk without its main window, for the screens' tests: the demo property in
// a session, its rate data, and a listener that keeps the calendar up to date
// from what the screens publish, as the desk does, and keeps it for the test.
class ScreenDesk : public fenlark::ChangeListener {
public:
    // userId 0 is the administrator; canReserve is the right to set "Reserved".
    explicit ScreenDesk(qint32 userId = 0, bool canReserve = true)
    {
        fenlark::PropertyGenerator(fenlark::PropertyGenerator::demo()).generate(t.db());
        session = std::make_unique<fenlark::Session>(fenlark::Database::open(t.file(QStringLiteral("test.db"))), 0);
        session->refreshBBSetup();
        session->reloadSetup();
        fenlark::UserStruct user = fenlark::UserStruct::autoAdmin();
        user.UserID = userId;
        user.UserName = userId ? QStringLiteral("mary") : QStringLiteral("admin");
        user.CancelBooking = canReserve;
        session->setUser(user);
        session->setChangeListener(this);
        rates = fenlark::RateData::load(session->db());
    }
    ~ScreenDesk() override { session->setChangeListener(nullptr); }

    void applyChanges(const fenlark::Changes &changes) override
    {
        published.merge(changes);
        ++publications;
        session->calendar().refresh(session->db(), changes);
    }

    fenlark::Database &db() { return session->db(); }

    TestDatabase t;
    std::unique_ptr<fenlark::Session> session;
    fenlark::RateData rates;
    fenlark::Changes published;
    int publications = 0;
};
