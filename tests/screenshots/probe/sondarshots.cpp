#include "windowwalk.h"

#include <QGenericPlugin>

namespace {

// Qt creates this once its application object stands, before main() builds the window.
class SondarShotsPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "sondarshots.json")

public:
    QObject *create(const QString &key, const QString &) override
    {
        return key.compare(QLatin1String("sondarshots"), Qt::CaseInsensitive) == 0 ? WindowWalk::fromEnvironment() : nullptr;
    }
};

} // namespace

#include "sondarshots.moc"
