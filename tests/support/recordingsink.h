#pragma once

#include "shell/messages.h"

#include <QList>

#include <vector>

// Records the messages the program shows and answers its questions: from the
// queue of answers while it lasts, then with the default answer.
class RecordingSink : public fenlark::MessageSink {
public:
    RecordingSink() { fenlark::messages::setSink(this); }
    ~RecordingSink() override { fenlark::messages::setSink(nullptr); }

    void show(const fenlark::UserMessage &message) override { shown << message; }
    bool ask(const fenlark::UserMessage &message) override
    {
        asked << message;
        if (answers.empty())
            return answer;
        const bool a = answers.front();
        answers.erase(answers.begin());
        return a;
    }

    // The string ids of what was shown and asked, in order.
    QList<int> shownIds() const { return idsOf(shown); }
    QList<int> askedIds() const { return idsOf(asked); }
    int lastShownId() const { return shown.isEmpty() ? -1 : shown.last().id; }
    void clear()
    {
        shown.clear();
        asked.clear();
    }

    QList<fenlark::UserMessage> shown;
    QList<fenlark::UserMessage> asked;
    std::vector<bool> answers;
    bool answer = true;

private:
    static QList<int> idsOf(const QList<fenlark::UserMessage> &messages)
    {
        QList<int> ids;
        for (const fenlark::UserMessage &m : messages)
            ids << m.id;
        return ids;
    }
};
