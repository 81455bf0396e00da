#pragma once

#include "core/messagesink.h"

#include <QStringList>
#include <QVector>

// Keeps every message box a test provokes, so the test can assert on it instead of clicking.
class RecordingSink final : public MessageSink
{
public:
    struct Message {
        Icon icon;
        QString text;
        QString title;
    };

    void showMessage(Icon icon, const QString &text, const QString &title) override
    {
        messages.append({icon, text, title});
    }

    QStringList texts() const
    {
        QStringList result;
        for (const auto &m : messages)
            result << m.text;
        return result;
    }

    QVector<Message> messages;
};
