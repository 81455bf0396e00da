#include "resources/resourceicon.h"

#include <QHash>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

// The resources live in a static library: nothing refers to them, so the linker would drop
// them unless they are registered by name.
static void registerIconResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace {

QString resourcePath(const QString &name)
{
    static const bool registered = (registerIconResources(), true);
    Q_UNUSED(registered);
    const QString upper = name.toUpper();
    return ResourceIcon::names().contains(upper) ? QStringLiteral(":/icons/") + upper + QStringLiteral(".svg")
                                                 : QString();
}

} // namespace

const QStringList &ResourceIcon::names()
{
    static const QStringList all{
        QStringLiteral("SALAT"),  QStringLiteral("GREEN"), QStringLiteral("DARKGREEN"), QStringLiteral("CYAN"),
        QStringLiteral("BLUE"),   QStringLiteral("DARKBLUE"), QStringLiteral("MAGENTA"), QStringLiteral("PURPLE"),
        QStringLiteral("DARKRED"), QStringLiteral("RED"),  QStringLiteral("YELLOW"),    QStringLiteral("A_"),
        QStringLiteral("PING"),   QStringLiteral("TRACE"),
    };
    return all;
}

QPixmap ResourceIcon::pixmap(const QString &name, int size)
{
    const QString path = resourcePath(name);
    if (path.isEmpty() || size <= 0)
        return {};
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return {};
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    return QPixmap::fromImage(image);
}

QIcon ResourceIcon::load(const QString &name)
{
    // The tray asks for an icon at every sample; each is drawn once.
    static QHash<QString, QIcon> drawn;
    const QString key = name.toUpper();
    if (const auto found = drawn.constFind(key); found != drawn.constEnd())
        return *found;
    if (resourcePath(key).isEmpty())
        return {};
    // Drawn at each size the tray, the menus and the title bar ask for, so none is scaled from another.
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48, 64})
        icon.addPixmap(pixmap(key, size));
    drawn.insert(key, icon);
    return icon;
}
