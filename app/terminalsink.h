#pragma once

#include "core/messagesink.h"

// Message boxes of a front end without windows: one line on standard error each.
class TerminalSink final : public MessageSink
{
public:
    void showMessage(Icon icon, const QString &text, const QString &title) override;
};
