#include "core/runtimeerror.h"

RuntimeError::RuntimeError(int number, QString description)
    : m_number(number)
    , m_description(std::move(description))
    , m_what((QString::number(m_number) + QLatin1Char(':') + m_description).toUtf8())
{
}

RuntimeError RuntimeError::overflow()
{
    return {6, QStringLiteral("Overflow")};
}

RuntimeError RuntimeError::subscriptOutOfRange()
{
    return {9, QStringLiteral("Subscript out of range")};
}

RuntimeError RuntimeError::typeMismatch()
{
    return {13, QStringLiteral("Type mismatch")};
}

RuntimeError RuntimeError::invalidProcedureCall()
{
    return {5, QStringLiteral("Invalid procedure call or argument")};
}
