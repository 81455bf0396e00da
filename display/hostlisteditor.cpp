#include "display/hostlisteditor.h"

#include "core/twips.h"

#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {
constexpr int NumberColumn = 0;
constexpr int HostColumn = 1;
} // namespace

HostListEditor::HostListEditor(QWidget *parent)
    : QWidget(parent)
    , m_grdHosts(new QTableWidget(0, 2, this))
    , m_txtHost(new QLineEdit(m_grdHosts->viewport()))
{
    m_grdHosts->setObjectName(QStringLiteral("grdHosts"));
    m_grdHosts->setHorizontalHeaderLabels({QStringLiteral("#"), QStringLiteral("Host address")});
    m_grdHosts->verticalHeader()->hide();
    m_grdHosts->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_grdHosts->setSelectionMode(QAbstractItemView::SingleSelection);
    m_grdHosts->horizontalHeader()->setStretchLastSection(true);
    connect(m_grdHosts, &QTableWidget::currentCellChanged, this, &HostListEditor::grdHosts_EnterCell);

    m_txtHost->setObjectName(QStringLiteral("txtHost"));
    m_txtHost->setFrame(false);
    m_txtHost->hide();
    m_txtHost->installEventFilter(this);
    connect(m_txtHost, &QLineEdit::textEdited, this, [this] { m_changed = true; });

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_grdHosts);
}

void HostListEditor::rebuild(const QStringList &entries)
{
    m_grdHosts->setUpdatesEnabled(false);
    const QSignalBlocker blocker(m_grdHosts);
    m_grdHosts->setRowCount(0);
    m_txtHost->hide();
    m_changed = false;
    m_editRow = -1;
    setWidths();
    for (const QString &entry : entries) {
        if (entry.isEmpty())
            continue;
        const int row = m_grdHosts->rowCount();
        m_grdHosts->insertRow(row);
        m_grdHosts->setItem(row, NumberColumn, new QTableWidgetItem(QString::number(row + 1)));
        m_grdHosts->setItem(row, HostColumn, new QTableWidgetItem(entry));
    }
    appendEmptyRow();
    m_grdHosts->setCurrentCell(-1, -1);
    m_grdHosts->setUpdatesEnabled(true);
}

void HostListEditor::appendEmptyRow()
{
    const int row = m_grdHosts->rowCount();
    m_grdHosts->insertRow(row);
    m_grdHosts->setItem(row, NumberColumn, new QTableWidgetItem);
    m_grdHosts->setItem(row, HostColumn, new QTableWidgetItem);
}

void HostListEditor::setWidths()
{
    // "#" is 300 twips; the host column takes the grid's width less 600.
    m_grdHosts->setColumnWidth(NumberColumn, twips::toPixels(300, m_grdHosts->logicalDpiX()));
    m_grdHosts->setColumnWidth(HostColumn,
                               qMax(0, m_grdHosts->width() - twips::toPixels(600, m_grdHosts->logicalDpiX())));
}

void HostListEditor::grdHosts_EnterCell(int row, int column, int, int)
{
    commitPendingEdit();
    if (row >= 0 && column == NumberColumn) {
        // The numbers are the grid's own; entering one enters the host beside it.
        m_grdHosts->setCurrentCell(row, HostColumn);
        return;
    }
    if (row < 0 || column < 0) {
        m_txtHost->hide();
        m_editRow = -1;
        return;
    }
    m_editRow = row;
    const QTableWidgetItem *cell = m_grdHosts->item(row, HostColumn);
    m_txtHost->setText(cell ? cell->text() : QString());
    m_changed = false;
    placeEditBox();
    m_txtHost->raise();
    m_txtHost->show();
    m_txtHost->setFocus();
}

void HostListEditor::commitPendingEdit()
{
    if (m_editRow < 0 || !m_changed)
        return;
    m_changed = false;
    storeEdit(m_editRow);
}

void HostListEditor::storeEdit(int row)
{
    const QString text = m_txtHost->text();
    QTableWidgetItem *cell = m_grdHosts->item(row, HostColumn);
    if (!cell || cell->text() == text)
        return;
    if (row == m_grdHosts->rowCount() - 1) {
        cell->setText(text);
        m_grdHosts->item(row, NumberColumn)->setText(QString::number(row + 1));
        appendEmptyRow();
        Q_EMIT entryAppended(text);
    } else {
        cell->setText(text);
        Q_EMIT entryReplaced(row, text);
    }
}

void HostListEditor::cancelPendingEdit()
{
    if (m_editRow < 0)
        return;
    const QTableWidgetItem *cell = m_grdHosts->item(m_editRow, HostColumn);
    m_txtHost->setText(cell ? cell->text() : QString());
    m_changed = false;
}

void HostListEditor::placeEditBox()
{
    if (m_editRow < 0)
        return;
    const QModelIndex index = m_grdHosts->model()->index(m_editRow, HostColumn);
    m_txtHost->setGeometry(m_grdHosts->visualRect(index));
}

bool HostListEditor::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_txtHost && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            commitPendingEdit();
            return true;
        }
        if (key->key() == Qt::Key_Escape) {
            cancelPendingEdit();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void HostListEditor::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    setWidths();
    placeEditBox();
}
