#include "platform/initext.h"

namespace {

const QByteArray utf8Bom("\xEF\xBB\xBF");

QByteArray keyLine(const QString &key, const QString &value)
{
    return key.toUtf8() + '=' + value.toUtf8();
}

} // namespace

IniText::IniText(const QByteArray &content)
{
    QByteArray text = content;
    if (text.startsWith(utf8Bom)) {
        m_hasBom = true;
        text.remove(0, utf8Bom.size());
    }
    const qsizetype firstBreak = text.indexOf('\n');
    const bool bareLineFeed = firstBreak == 0 || (firstBreak > 0 && text.at(firstBreak - 1) != '\r');
    m_lineBreak = bareLineFeed ? QByteArray("\n") : QByteArray("\r\n");
    qsizetype start = 0;
    while (start < text.size()) {
        qsizetype end = text.indexOf('\n', start);
        if (end < 0)
            end = text.size();
        QByteArray line = text.mid(start, end - start);
        QByteArray ending = end < text.size() ? QByteArray("\n") : QByteArray();
        if (line.endsWith('\r')) {
            line.chop(1);
            ending.prepend('\r');
        }
        m_lines.push_back(parseLine(std::move(line)));
        m_lines.back().ending = std::move(ending);
        start = end + 1;
    }
}

IniText::Line IniText::parseLine(QByteArray text)
{
    Line line;
    const QByteArray trimmed = text.trimmed();
    if (trimmed.startsWith(';')) {
        line.kind = Kind::Comment;
    } else if (trimmed.startsWith('[')) {
        // A header without its closing bracket is no header; the platform skips such a line.
        const qsizetype close = trimmed.lastIndexOf(']');
        if (close > 0) {
            line.kind = Kind::Section;
            line.name = QString::fromUtf8(trimmed.mid(1, close - 1).trimmed());
        }
    } else if (!trimmed.isEmpty()) {
        const qsizetype equals = trimmed.indexOf('=');
        const QByteArray name = (equals < 0 ? trimmed : trimmed.left(equals)).trimmed();
        if (!name.isEmpty()) {
            line.kind = Kind::Key;
            line.name = QString::fromUtf8(name);
        }
    }
    line.text = std::move(text);
    return line;
}

QString IniText::keyValue(const Line &line)
{
    const qsizetype equals = line.text.indexOf('=');
    return equals < 0 ? QString() : QString::fromUtf8(line.text.mid(equals + 1).trimmed());
}

bool IniText::sameName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

std::optional<IniText::Range> IniText::findSection(const QString &section, size_t from) const
{
    const QString wanted = section.trimmed();
    for (size_t i = from; i < m_lines.size(); ++i) {
        if (m_lines[i].kind != Kind::Section || !sameName(m_lines[i].name, wanted))
            continue;
        size_t end = i + 1;
        while (end < m_lines.size() && m_lines[end].kind != Kind::Section)
            ++end;
        return Range{i, end};
    }
    return std::nullopt;
}

std::optional<size_t> IniText::findKey(const Range &range, const QString &key) const
{
    const QString wanted = key.trimmed();
    for (size_t i = range.header + 1; i < range.end; ++i) {
        if (m_lines[i].kind == Kind::Key && sameName(m_lines[i].name, wanted))
            return i;
    }
    return std::nullopt;
}

std::optional<QString> IniText::value(const QString &section, const QString &key) const
{
    const auto range = findSection(section);
    if (!range)
        return std::nullopt;
    const auto index = findKey(*range, key);
    if (!index)
        return std::nullopt;
    return keyValue(m_lines[*index]);
}

QStringList IniText::sectionEntries(const QString &section) const
{
    QStringList entries;
    const auto range = findSection(section);
    if (!range)
        return entries;
    for (size_t i = range->header + 1; i < range->end; ++i) {
        const Line &line = m_lines[i];
        if (line.kind != Kind::Key)
            continue;
        entries << (line.text.contains('=') ? line.name + QLatin1Char('=') + keyValue(line) : line.name);
    }
    return entries;
}

bool IniText::setValue(const QString &section, const QString &key, const QString &value)
{
    const auto range = findSection(section);
    if (!range) {
        m_lines.push_back(parseLine('[' + section.trimmed().toUtf8() + ']'));
        m_lines.push_back(parseLine(keyLine(key.trimmed(), value)));
        return true;
    }
    if (const auto index = findKey(*range, key)) {
        Line &line = m_lines[*index];
        const QByteArray replaced = keyLine(line.name, value);
        if (line.text == replaced)
            return false;
        QByteArray ending = std::move(line.ending);
        line = parseLine(replaced);
        line.ending = std::move(ending);
        return true;
    }
    // A new key goes after the section's last key, so blank lines and comments that close it stay below.
    size_t insertAt = range->header + 1;
    for (size_t i = range->header + 1; i < range->end; ++i) {
        if (m_lines[i].kind == Kind::Key)
            insertAt = i + 1;
    }
    m_lines.insert(m_lines.begin() + qsizetype(insertAt), parseLine(keyLine(key.trimmed(), value)));
    return true;
}

bool IniText::removeKey(const QString &section, const QString &key)
{
    const auto range = findSection(section);
    if (!range)
        return false;
    bool removed = false;
    size_t end = range->end;
    while (const auto index = findKey(Range{range->header, end}, key)) {
        m_lines.erase(m_lines.begin() + qsizetype(*index));
        --end;
        removed = true;
    }
    return removed;
}

bool IniText::removeSection(const QString &section)
{
    // Every section of that name goes, so that a rewrite of it starts clean.
    bool removed = false;
    while (const auto range = findSection(section)) {
        m_lines.erase(m_lines.begin() + qsizetype(range->header), m_lines.begin() + qsizetype(range->end));
        removed = true;
    }
    return removed;
}

QByteArray IniText::content() const
{
    QByteArray text;
    if (m_hasBom)
        text += utf8Bom;
    for (const Line &line : m_lines)
        text += line.text + (line.ending.isEmpty() ? m_lineBreak : line.ending);
    return text;
}
