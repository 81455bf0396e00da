#pragma once

#include <QString>

#include <exception>

// A run-time error of the kind a trapped procedure reports in its error box:
// the classic error number and its description ("6:Overflow", "9:Subscript out of range").
class RuntimeError : public std::exception
{
public:
    RuntimeError(int number, QString description);

    int number() const { return m_number; }
    const QString &description() const { return m_description; }
    const char *what() const noexcept override { return m_what.constData(); }

    static RuntimeError overflow();
    static RuntimeError subscriptOutOfRange();
    static RuntimeError typeMismatch();
    static RuntimeError invalidProcedureCall();

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};
