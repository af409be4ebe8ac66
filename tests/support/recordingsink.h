#pragma once

#include "shell/messages.h"

#include <QList>

// Records the messages the core shows and answers its questions as told.
class RecordingSink : public fenlark::MessageSink {
public:
    RecordingSink() { fenlark::messages::setSink(this); }
    ~RecordingSink() override { fenlark::messages::setSink(nullptr); }

    void show(const fenlark::UserMessage &message) override { shown << message; }
    bool ask(const fenlark::UserMessage &message) override
    {
        asked << message;
        return answer;
    }

    QList<fenlark::UserMessage> shown;
    QList<fenlark::UserMessage> asked;
    bool answer = true;
};
