#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

// The text of an INI file, read and edited by the rules of the platform's profile functions:
// section and key names are trimmed and match case-insensitively, the first matching section
// and key win, values are trimmed of surrounding blanks. Lines that are not touched keep their
// bytes and line breaks, so comments, junk and other sections survive an edit; new lines take
// the file's first line break.
class IniText
{
public:
    explicit IniText(const QByteArray &content);

    // Empty optional when the section or the key is absent; a key line without "=" has an empty value.
    std::optional<QString> value(const QString &section, const QString &key) const;
    // The entries of the first matching section as "key=value" (or "key" alone for a line without "=").
    QStringList sectionEntries(const QString &section) const;

    // Each returns true when the text changed.
    bool setValue(const QString &section, const QString &key, const QString &value);
    bool removeKey(const QString &section, const QString &key);
    bool removeSection(const QString &section);

    QByteArray content() const;

private:
    enum class Kind { Other, Comment, Section, Key };
    struct Line {
        QByteArray text;
        QByteArray ending; // as read; empty for a new line or a last line without one
        Kind kind = Kind::Other;
        QString name; // section or key name, trimmed
    };
    struct Range {
        size_t header; // index of the section's header line
        size_t end;    // one past its last line
    };

    static Line parseLine(QByteArray text);
    static QString keyValue(const Line &line);
    static bool sameName(const QString &a, const QString &b);

    std::optional<Range> findSection(const QString &section, size_t from = 0) const;
    std::optional<size_t> findKey(const Range &range, const QString &key) const;

    std::vector<Line> m_lines;
    QByteArray m_lineBreak;
    bool m_hasBom = false;
};
