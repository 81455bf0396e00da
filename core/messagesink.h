#pragma once

#include <QString>

// Every message box of the program goes through one sink, so that windows run offscreen in
// tests without a click and a terminal front end prints instead.
class MessageSink
{
public:
    enum class Icon { Critical, Information, Warning };

    virtual ~MessageSink() = default;
    virtual void showMessage(Icon icon, const QString &text, const QString &title) = 0;
};
