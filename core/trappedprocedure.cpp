#include "core/trappedprocedure.h"

#include "core/messagesink.h"
#include "core/runtimeerror.h"

TrappedProcedure::TrappedProcedure(MessageSink &sink, QString window, QString procedure, QString title)
    : m_sink(sink)
    , m_window(std::move(window))
    , m_procedure(std::move(procedure))
    , m_title(std::move(title))
{
}

bool TrappedProcedure::step(int line, const std::function<void()> &body)
{
    try {
        body();
        return true;
    } catch (const RuntimeError &error) {
        m_sink.showMessage(MessageSink::Icon::Critical,
                           errorText(error.number(), error.description(), m_window, m_procedure, line), m_title);
    } catch (const std::exception &error) {
        m_sink.showMessage(MessageSink::Icon::Critical,
                           errorText(5, QString::fromLocal8Bit(error.what()), m_window, m_procedure, line), m_title);
    }
    return false;
}

QString TrappedProcedure::errorText(int number, const QString &description, const QString &window,
                                    const QString &procedure, int line)
{
    return QString::number(number) + QLatin1Char(':') + description + QStringLiteral("\r\nError in ") + window
        + QLatin1Char('.') + procedure + QStringLiteral(" on line ") + QString::number(line);
}
