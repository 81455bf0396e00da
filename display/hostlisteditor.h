#pragma once

#include <QWidget>

class QLineEdit;
class QTableWidget;

// The editor of the host list: the grid `grdHosts` ("#", "Host address") with the editing box
// `txtHost` laid over its current cell. It holds copies of the drop-down's entries; every
// accepted edit is reported so that the drop-down, the master list, takes it.
class HostListEditor : public QWidget
{
    Q_OBJECT

public:
    explicit HostListEditor(QWidget *parent = nullptr);

    // Rebuilds the grid from the drop-down's entries, skipping empty ones, with one empty row below.
    void rebuild(const QStringList &entries);

    QTableWidget *grid() const { return m_grdHosts; }
    QLineEdit *editBox() const { return m_txtHost; }

    // Stores a pending edit of the cell under the editing box (what moving to another cell does).
    void commitPendingEdit();
    // Drops a pending edit: the box shows the cell's text again.
    void cancelPendingEdit();

Q_SIGNALS:
    void entryAppended(const QString &host);
    void entryReplaced(int index, const QString &host);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void grdHosts_EnterCell(int row, int column, int previousRow, int previousColumn);
    void storeEdit(int row);
    void placeEditBox();
    void setWidths();
    void appendEmptyRow();

    QTableWidget *m_grdHosts;
    QLineEdit *m_txtHost;
    bool m_changed = false;
    int m_editRow = -1; // the row whose host cell the box edits
};
