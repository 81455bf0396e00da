#pragma once

#include "core/messagesink.h"

class QWidget;

// The desktop's message boxes, modal to their parent window.
class MessageBoxSink final : public MessageSink
{
public:
    explicit MessageBoxSink(QWidget *parent = nullptr)
        : m_parent(parent)
    {
    }

    void setParent(QWidget *parent) { m_parent = parent; }
    void showMessage(Icon icon, const QString &text, const QString &title) override;

private:
    QWidget *m_parent;
};
