#pragma once

#include <QString>
#include <QStringList>

#include <optional>

// The profile-file functions of the platform (GetPrivateProfileString, GetPrivateProfileSection,
// WritePrivateProfileString) over an INI file. Nothing is cached: every call reads the file anew.
// A missing file reads as empty; a write replaces the file whole (a temporary file renamed over
// it), so a crash or a full disk leaves either the old or the new file, never half of one.
namespace profilefile {

// What the callers' buffers hold: a longer value comes back cut, a longer section without the
// entries that do not fit.
inline constexpr qsizetype ValueBufferSize = 1024;    // characters, the terminating NUL included
inline constexpr qsizetype SectionBufferSize = 32767; // characters, every entry's NUL and the final one included
// Only this much of a file is read. A host list is a few hundred bytes; reading a stray huge
// file whole on every call would stall the window, so beyond this the file is not ours to edit.
inline constexpr qint64 MaxFileSize = 16 * 1024 * 1024;

// The value of the key, trimmed, or defaultValue when the section or the key is absent.
QString readString(const QString &path, const QString &section, const QString &key,
                   const QString &defaultValue = {});

// The section's entries, "key=value" each, as many whole entries as fit the section buffer.
QStringList readSection(const QString &path, const QString &section);

// No key: the section is deleted. No value: the key is deleted. Otherwise key=value is written,
// the section being created when needed. Arguments end at their first NUL, as C strings do.
// Names that would break the file's structure (empty, a line break, "]" in a section, "=" in a
// key, a key starting with "[" or ";") are refused; a line break in a value is written as a blank.
// False when refused or when the file could not be replaced; the file is then as it was.
bool writeString(const QString &path, const QString &section, const std::optional<QString> &key,
                 const std::optional<QString> &value);

} // namespace profilefile
