#pragma once

#include <QString>

#include <functional>

class MessageSink;

// A procedure whose run-time errors are trapped: a failing step shows the error box
// ("<number>:<description>" CR LF "Error in <window>.<procedure> on line <step>")
// and the procedure carries on with the next step.
class TrappedProcedure
{
public:
    TrappedProcedure(MessageSink &sink, QString window, QString procedure, QString title);

    // Runs one step; returns false when it failed (and was reported).
    bool step(int line, const std::function<void()> &body);

    static QString errorText(int number, const QString &description, const QString &window,
                             const QString &procedure, int line);

private:
    MessageSink &m_sink;
    QString m_window;
    QString m_procedure;
    QString m_title;
};
