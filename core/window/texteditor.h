#pragma once

#include <QString>

// Opens a text file for the user: the desktop's editor, or $VISUAL / $EDITOR when there is no desktop.
namespace texteditor {

bool open(const QString &path);

} // namespace texteditor
