#include "windowwalk.h"

#include <QAbstractButton>
#include <QAbstractItemModel>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QWindow>

namespace {

const QString TraceCompleted = QStringLiteral("Route Trace has Completed");

// Generous bounds: they only keep a broken run from hanging; nothing here measures speed.
constexpr int WindowWaitMs = 30000;
constexpr int TraceWaitMs = 120000;

QString sizeText(QSize size)
{
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

QString rectText(const QRect &rect)
{
    return QStringLiteral("%1,%2 %3").arg(rect.x()).arg(rect.y()).arg(sizeText(rect.size()));
}

// The controls the program names, as opposed to the parts Qt builds inside them.
bool isNamedControl(const QWidget *widget)
{
    const QString name = widget->objectName();
    return !name.isEmpty() && !name.startsWith(QLatin1String("qt_"));
}

// The text a control shows in one line, where a cut would lose letters.
QString shownText(const QWidget *widget)
{
    if (const auto *label = qobject_cast<const QLabel *>(widget))
        return label->wordWrap() ? QString() : label->text();
    if (const auto *button = qobject_cast<const QAbstractButton *>(widget))
        return button->text();
    return {};
}

} // namespace

WindowWalk *WindowWalk::fromEnvironment()
{
    Plan plan;
    plan.reportPath = qEnvironmentVariable("SONDAR_SHOT_REPORT");
    if (plan.reportPath.isEmpty())
        return nullptr;
    plan.pingShotPath = qEnvironmentVariable("SONDAR_SHOT_PING");
    plan.traceShotPath = qEnvironmentVariable("SONDAR_SHOT_TRACE");
    plan.traceHost = qEnvironmentVariable("SONDAR_SHOT_TRACE_HOST");
    bool ok = false;
    const int samples = qEnvironmentVariableIntValue("SONDAR_SHOT_SAMPLES", &ok);
    if (ok && samples > 0)
        plan.samples = samples;
    return new WindowWalk(plan);
}

WindowWalk::WindowWalk(Plan plan)
    : m_plan(std::move(plan))
{
    // The first turn of the event loop comes after main() has loaded and shown the window.
    QTimer::singleShot(0, this, &WindowWalk::run);
}

void WindowWalk::run()
{
    note(QStringLiteral("result"), walk() ? QStringLiteral("walked") : QStringLiteral("stopped"));
    QFile report(m_plan.reportPath);
    if (report.open(QIODevice::WriteOnly | QIODevice::Truncate))
        report.write((m_lines.join(QLatin1Char('\n')) + QLatin1Char('\n')).toUtf8());
    // As the user ends the program: the window's own close writes hosts.ini, and the last
    // window closed ends the event loop.
    if (m_window)
        m_window->close();
    else
        QCoreApplication::exit(3);
}

template<typename T>
T *WindowWalk::control(const char *name)
{
    T *found = m_window ? m_window->findChild<T *>(QLatin1String(name)) : nullptr;
    if (!found)
        fail(QStringLiteral("no control named ") + QLatin1String(name));
    return found;
}

bool WindowWalk::walk()
{
    const bool shown = QTest::qWaitFor([this] {
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (widget->objectName() == QLatin1String("f_Ping") && widget->isVisible())
                m_window = widget;
        }
        return !m_window.isNull();
    }, WindowWaitMs);
    if (!shown)
        return fail(QStringLiteral("the main window f_Ping did not show"));
    if (!QTest::qWaitForWindowExposed(m_window, WindowWaitMs))
        return fail(QStringLiteral("the main window was never exposed on the display"));

    auto *cmb = control<QComboBox>("cmb");
    auto *command1 = control<QPushButton>("Command1");
    auto *command2 = control<QPushButton>("Command2");
    auto *chkMode = control<QCheckBox>("chkMode");
    auto *picture = control<QToolButton>("LDPIC");
    auto *label1 = control<QLabel>("Label1");
    auto *label2 = control<QLabel>("Label2");
    auto *flx = control<QTableView>("FLX");
    if (!cmb || !command1 || !command2 || !chkMode || !picture || !label1 || !label2 || !flx)
        return false;
    note(QStringLiteral("windowSize"), sizeText(m_window->size()));
    note(QStringLiteral("devicePixelRatio"), QString::number(m_window->devicePixelRatioF()));
    // A grab holds only what lies on the screen; the rest would come out black.
    note(QStringLiteral("onScreen"), QString::number(m_window->screen()->geometry().contains(m_window->frameGeometry())));
    note(QStringLiteral("hosts"), [cmb] {
        QStringList hosts;
        for (int i = 0; i < cmb->count(); ++i)
            hosts << cmb->itemText(i);
        return hosts;
    }());

    // The polling cycle announces each sample once it is shown; found by that signal, as the
    // probe knows the program only through Qt's meta-objects.
    QObject *cycle = nullptr;
    for (QObject *child : m_window->findChildren<QObject *>()) {
        if (child->metaObject()->indexOfSignal("sampleShown(int,QString)") >= 0)
            cycle = child;
    }
    if (!cycle)
        return fail(QStringLiteral("no polling cycle announces its samples"));
    const auto counting = connect(cycle, SIGNAL(sampleShown(int,QString)), this, SLOT(countSample()));
    note(QStringLiteral("pingHost"), cmb->currentText());
    QTest::mouseClick(command1, Qt::LeftButton);
    // The program holds the first probe off for 5 s after start-up.
    const int sampleWaitMs = WindowWaitMs + m_plan.samples * 2000;
    const bool sampled = QTest::qWaitFor([this] { return m_samples >= m_plan.samples; }, sampleWaitMs);
    disconnect(counting);
    if (!sampled)
        return fail(QStringLiteral("only %1 of %2 samples arrived").arg(m_samples).arg(m_plan.samples));
    // Grabbed between two samples: the result is painted, the next probe not yet sent.
    QTest::qWait(150);
    note(QStringLiteral("samples"), QString::number(m_samples));
    note(QStringLiteral("pingTitle"), m_window->windowTitle());
    note(QStringLiteral("pingLabel1"), label1->text());
    note(QStringLiteral("pingLabel2"), label2->text());
    if (!grab(QStringLiteral("pingShot"), m_plan.pingShotPath))
        return false;
    noteLayout(QStringLiteral("ping"));

    // Stop first: switching to Trace mode on its own leaves the polling timer running.
    QTest::mouseClick(command2, Qt::LeftButton);
    QTest::mouseClick(picture, Qt::LeftButton);
    QTest::qWait(100);
    note(QStringLiteral("traceModeChecked"), QString::number(chkMode->isChecked()));
    note(QStringLiteral("traceCommand1"), command1->text());
    note(QStringLiteral("tracePictureTip"), picture->toolTip());
    note(QStringLiteral("traceFlxVisible"), QString::number(flx->isVisible()));

    const int index = cmb->findText(m_plan.traceHost);
    if (index >= 0)
        cmb->setCurrentIndex(index);
    else
        cmb->setEditText(m_plan.traceHost);
    note(QStringLiteral("traceHost"), cmb->currentText());
    // Queued, so the wait below sees the trace end whether the click returns early or late.
    QTimer::singleShot(0, command1, [command1] { QTest::mouseClick(command1, Qt::LeftButton); });
    if (!QTest::qWaitFor([label1] { return label1->text() == TraceCompleted; }, TraceWaitMs))
        return fail(QStringLiteral("the trace did not complete; Label1 shows \"%1\"").arg(label1->text()));
    QTest::qWait(150);
    note(QStringLiteral("traceLabel1"), label1->text());
    note(QStringLiteral("traceLabel2"), label2->text());
    QAbstractItemModel *grid = flx->model();
    QStringList header;
    for (int column = 0; column < grid->columnCount(); ++column)
        header << grid->headerData(column, Qt::Horizontal).toString();
    note(QStringLiteral("flxHeader"), header);
    for (int row = 0; row < grid->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < grid->columnCount(); ++column)
            cells << grid->index(row, column).data().toString();
        if (cells.join(QString()).isEmpty())
            continue;
        note(QStringLiteral("hop"), cells);
    }
    if (!grab(QStringLiteral("traceShot"), m_plan.traceShotPath))
        return false;
    noteLayout(QStringLiteral("trace"));
    return true;
}

bool WindowWalk::grab(const QString &key, const QString &path)
{
    // From the X server, as it is on the screen, not painted again for the occasion.
    const QPixmap shot = m_window->screen()->grabWindow(m_window->winId());
    if (shot.isNull() || !shot.save(path, "PNG"))
        return fail(QStringLiteral("could not grab or save ") + path);
    note(key, QStringList{path, sizeText(shot.size())});
    return true;
}

// Where each visible control sits, and what does not fit: a control smaller than the least its
// content needs, a one-line text wider than its control, a control reaching out of its parent,
// two sibling controls on top of each other.
void WindowWalk::noteLayout(const QString &mode)
{
    QList<QWidget *> shown;
    for (QWidget *widget : m_window->findChildren<QWidget *>()) {
        if (isNamedControl(widget) && widget->isVisibleTo(m_window) && !widget->isWindow())
            shown << widget;
    }
    QStringList faults;
    for (QWidget *widget : std::as_const(shown)) {
        const QString name = widget->objectName();
        note(mode + QStringLiteral("Geometry"),
             QStringList{name, rectText(QRect(widget->mapTo(m_window, QPoint(0, 0)), widget->size()))});
        const QSize least = widget->minimumSizeHint();
        if (least.isValid() && (widget->width() < least.width() || widget->height() < least.height()))
            faults << name + QStringLiteral(" is ") + sizeText(widget->size()) + QStringLiteral(", needs ") + sizeText(least);
        const QString text = shownText(widget);
        if (!text.isEmpty() && widget->fontMetrics().horizontalAdvance(text) > widget->contentsRect().width()
            && qobject_cast<QLabel *>(widget))
            faults << name + QStringLiteral(" cuts its text \"") + text + QLatin1Char('"');
        if (qobject_cast<QAbstractButton *>(widget) && widget->width() < widget->sizeHint().width())
            faults << name + QStringLiteral(" is narrower than its caption \"") + text + QLatin1Char('"');
        if (QWidget *parent = widget->parentWidget(); parent && !parent->rect().contains(widget->geometry()))
            faults << name + QStringLiteral(" reaches out of ") + parent->objectName();
    }
    for (qsizetype i = 0; i < shown.size(); ++i) {
        for (qsizetype j = i + 1; j < shown.size(); ++j) {
            if (shown[i]->parentWidget() == shown[j]->parentWidget() && shown[i]->geometry().intersects(shown[j]->geometry()))
                faults << shown[i]->objectName() + QStringLiteral(" overlaps ") + shown[j]->objectName();
        }
    }
    if (m_window->width() < m_window->minimumSizeHint().width() || m_window->height() < m_window->minimumSizeHint().height())
        faults << QStringLiteral("the window is smaller than its layout needs (") + sizeText(m_window->minimumSizeHint())
                      + QLatin1Char(')');
    for (const QString &fault : std::as_const(faults))
        note(mode + QStringLiteral("LayoutFault"), fault);
}

void WindowWalk::note(const QString &key, const QString &value)
{
    note(key, QStringList{value});
}

void WindowWalk::note(const QString &key, const QStringList &values)
{
    // One line per fact, tab-separated; a tab or line break inside a text would split it.
    QStringList fields{key};
    for (QString value : values)
        fields << value.replace(QLatin1Char('\t'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    m_lines << fields.join(QLatin1Char('\t'));
}

bool WindowWalk::fail(const QString &why)
{
    note(QStringLiteral("error"), why);
    return false;
}
