#include "app/terminalsink.h"

#include <cstdio>

void TerminalSink::showMessage(Icon icon, const QString &text, const QString &title)
{
    const char *kind = icon == Icon::Critical ? "error" : icon == Icon::Warning ? "warning" : "note";
    QString oneLine = text;
    oneLine.replace(QLatin1String("\r\n"), QLatin1String(" "));
    std::fprintf(stderr, "%s: %s: %s\n", qPrintable(title), kind, qPrintable(oneLine));
}
