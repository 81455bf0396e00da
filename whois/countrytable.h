#pragma once

#include <QList>
#include <QString>

// Country names by code, from a country.txt of "code;name" lines. The table is read once, on the
// first look-up that finds the file, and kept; use one table per process and one thread at a time.
class CountryTable
{
public:
    explicit CountryTable(QString filePath);

    // country.txt in the program directory when the user keeps one there, else the one shipped
    // beside the executable, else the installed one in <prefix>/share/sondar.
    static QString locate(const QString &programDir, const QString &executableDir);

    QString filePath() const { return m_filePath; }

    // The name for a code; empty for an empty or unknown code and when the file is missing.
    // Codes in the file match only as written in upper case; a code listed twice gives its last name.
    QString lookup(const QString &code);

private:
    struct Row {
        QString code;
        QString name;
    };

    void load();

    QString m_filePath;
    QList<Row> m_rows;
};
