#pragma once

#include "core/busypointer.h"

#include <QPointer>
#include <QWidget>

class CountryTable;
class QComboBox;
class QFrame;
class QLabel;
class QModelIndex;
class QStandardItemModel;
class QTableView;
class Trace;

// The trace control of the main window's Trace mode: the tracer TRC, its grid FLX below a caption
// strip, start and stop, and the hop cells that open whois when clicked. The tracer's texts go to
// the main window's host box and labels handed in by setCaptionTargets.
class sdTrace : public QWidget
{
    Q_OBJECT

public:
    explicit sdTrace(CountryTable &countries, QWidget *parent = nullptr);
    ~sdTrace() override;

    // Traces host into FLX and returns when the trace has ended; the event loop runs meanwhile.
    // Does nothing while a trace runs.
    void StartTrace(const QString &host, int timeoutMs);
    // The running trace ends before its next echo, with "Canceled"; the pointer is reset at once.
    void StopTrace();
    WId hwnd() const;

    // cmb gets the name being traced, Label2 its address, Label1 every log, status and error text.
    void setCaptionTargets(QComboBox *cmb, QLabel *Label2, QLabel *Label1);

signals:
    // A click on a hop's host name (column 1) or address (column 2), with FLX's row and column:
    // the whois window opens on it.
    void whoisRequested(int row, int column);

protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void TRC_HostName(const QString &text);
    void TRC_IP(const QString &text);
    void TRC_LogString(const QString &text);
    void TRC_OnError(const QString &text);
    void TRC_Status(const QString &text);
    void FLX_Click(const QModelIndex &index);
    void FLX_MouseMove(const QPoint &position);

    void formatFLX();
    bool isHopCell(const QModelIndex &index) const;

    Trace *TRC;
    QStandardItemModel *m_grid;
    QFrame *picCaption;
    QLabel *imgCaption;
    QLabel *lblCaption;
    QTableView *FLX;
    QPointer<QComboBox> m_cmb;
    QPointer<QLabel> m_label2;
    QPointer<QLabel> m_label1;
    BusyPointer m_pointer;
};
