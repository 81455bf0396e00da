#pragma once

#include <QIcon>
#include <QPixmap>
#include <QString>
#include <QStringList>

// The program's named icons, compiled into the binary: the level colours "SALAT" .. "DARKRED",
// "RED" (no reply), "YELLOW" (probe in flight), "A_" (the program's own icon) and the mode
// pictures "PING" and "TRACE". Names match without regard to case, as resource names do;
// an unknown name gives a null icon or pixmap.
class ResourceIcon
{
public:
    static QIcon load(const QString &name);
    // The image drawn for a square of size pixels.
    static QPixmap pixmap(const QString &name, int size);
    static const QStringList &names();
};
