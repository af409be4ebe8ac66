#pragma once

#include "shell/messages.h"

namespace fenlark {

// Shows the core's messages as modal message boxes.
class DialogMessageSink : public MessageSink {
public:
    void show(const UserMessage &message) override;
    bool ask(const UserMessage &message) override;
};

} // namespace fenlark
