#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

// Conversions of stored text to numbers with the rules the settings were written for:
// integer conversions round half to even and fail with "Type mismatch" on text that is no
// number and "Overflow" outside the type; val() reads the leading number and never fails.
namespace textnumbers {

bool isNumeric(const QString &text);
int16_t toInteger(const QString &text);
int32_t toLong(const QString &text);
int16_t toInteger(double value);
int32_t toLong(double value);
double val(const QString &text);

// Item `index` of a list, failing as an array access out of range would.
const QString &item(const QStringList &list, qsizetype index);

} // namespace textnumbers
