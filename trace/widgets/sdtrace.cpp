#include "trace/widgets/sdtrace.h"

#include "core/twips.h"
#include "resources/resourceicon.h"
#include "trace/trace.h"
#include "trace/tracegrid.h"

#include <QComboBox>
#include <QFrame>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QMouseEvent>
#include <QStandardItemModel>
#include <QTableView>

#include <algorithm>

namespace {

constexpr int captionHeightTwips = 360;
constexpr int captionIconTwips = 240;
// The label starts this far right of the icon.
constexpr int captionGapTwips = 100;

} // namespace

sdTrace::sdTrace(CountryTable &countries, QWidget *parent)
    : QWidget(parent),
      TRC(new Trace(countries, this)),
      m_grid(new QStandardItemModel(this)),
      picCaption(new QFrame(this)),
      imgCaption(new QLabel(picCaption)),
      lblCaption(new QLabel(tr("Route Trace"), picCaption)),
      FLX(new QTableView(this))
{
    TRC->setObjectName(QStringLiteral("TRC"));
    picCaption->setObjectName(QStringLiteral("picCaption"));
    imgCaption->setObjectName(QStringLiteral("imgCaption"));
    lblCaption->setObjectName(QStringLiteral("lblCaption"));
    FLX->setObjectName(QStringLiteral("FLX"));

    picCaption->setFrameShape(QFrame::StyledPanel);
    picCaption->setAutoFillBackground(true);
    picCaption->setBackgroundRole(QPalette::Dark);
    lblCaption->setForegroundRole(QPalette::BrightText);
    QFont bold = lblCaption->font();
    bold.setBold(true);
    lblCaption->setFont(bold);
    imgCaption->setPixmap(ResourceIcon::pixmap(QStringLiteral("TRACE"), twips::toPixels(captionIconTwips, logicalDpiY())));

    FLX->setModel(m_grid);
    FLX->verticalHeader()->hide();
    FLX->setEditTriggers(QAbstractItemView::NoEditTriggers);
    FLX->setMouseTracking(true);
    FLX->viewport()->installEventFilter(this);
    formatFLX();

    connect(TRC, &Trace::LogString, this, &sdTrace::TRC_LogString);
    connect(TRC, &Trace::Status, this, &sdTrace::TRC_Status);
    connect(TRC, &Trace::IP, this, &sdTrace::TRC_IP);
    connect(TRC, &Trace::HostName, this, &sdTrace::TRC_HostName);
    connect(TRC, &Trace::OnError, this, &sdTrace::TRC_OnError);
    connect(TRC, &Trace::pointerBusy, this, [this](bool busy) { m_pointer.set(busy); });
    connect(FLX, &QTableView::clicked, this, &sdTrace::FLX_Click);
}

sdTrace::~sdTrace()
{
    m_pointer.set(false);
}

void sdTrace::StartTrace(const QString &host, int timeoutMs)
{
    if (TRC->isRunning())
        return;
    TRC->setHostName(host);
    TRC->DoTrace(m_grid, timeoutMs);
}

void sdTrace::StopTrace()
{
    TRC->setCancelled(true);
    m_pointer.set(false);
}

WId sdTrace::hwnd() const
{
    return effectiveWinId();
}

void sdTrace::setCaptionTargets(QComboBox *cmb, QLabel *Label2, QLabel *Label1)
{
    m_cmb = cmb;
    m_label2 = Label2;
    m_label1 = Label1;
}

void sdTrace::TRC_HostName(const QString &text)
{
    if (m_cmb)
        m_cmb->setCurrentText(text);
}

void sdTrace::TRC_IP(const QString &text)
{
    if (m_label2)
        m_label2->setText(text);
}

void sdTrace::TRC_LogString(const QString &text)
{
    if (m_label1)
        m_label1->setText(text);
}

void sdTrace::TRC_OnError(const QString &text)
{
    if (m_label1 && !text.isEmpty())
        m_label1->setText(text);
}

void sdTrace::TRC_Status(const QString &text)
{
    if (m_label1)
        m_label1->setText(text);
}

bool sdTrace::isHopCell(const QModelIndex &index) const
{
    return index.isValid() && (index.column() == tracegrid::HostName || index.column() == tracegrid::IPAddress)
        && !index.data().toString().isEmpty();
}

void sdTrace::FLX_Click(const QModelIndex &index)
{
    if (isHopCell(index))
        emit whoisRequested(index.row(), index.column());
}

void sdTrace::FLX_MouseMove(const QPoint &position)
{
    QWidget *cells = FLX->viewport();
    const QModelIndex index = FLX->indexAt(position);
    if (!isHopCell(index)) {
        if (cells->testAttribute(Qt::WA_SetCursor))
            cells->unsetCursor();
        return;
    }
    if (!cells->testAttribute(Qt::WA_SetCursor))
        cells->setCursor(Qt::PointingHandCursor);
    if (FLX->currentIndex().row() != index.row()) {
        const QModelIndex first = m_grid->index(index.row(), tracegrid::N);
        FLX->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        FLX->selectionModel()->select(QItemSelection(first, m_grid->index(index.row(), tracegrid::Time)),
                                      QItemSelectionModel::ClearAndSelect);
    }
}

bool sdTrace::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == FLX->viewport() && event->type() == QEvent::MouseMove)
        FLX_MouseMove(static_cast<QMouseEvent *>(event)->position().toPoint());
    return QWidget::eventFilter(watched, event);
}

void sdTrace::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    const int stripHeight = twips::toPixels(captionHeightTwips, logicalDpiY());
    picCaption->setGeometry(0, 0, width(), stripHeight);
    const QRect inner = picCaption->contentsRect();
    const int icon = twips::toPixels(captionIconTwips, logicalDpiY());
    imgCaption->setGeometry(inner.left() + 2, inner.top() + (inner.height() - icon) / 2, icon, icon);
    const int labelLeft = imgCaption->x() + imgCaption->width() + twips::toPixels(captionGapTwips, logicalDpiX());
    lblCaption->setGeometry(labelLeft, inner.top(), inner.right() + 1 - labelLeft, inner.height());
    FLX->setGeometry(0, stripHeight, width(), height() - stripHeight);
}

// The grid's set-up as the tracer makes it, plus what only a view has: widths and header height.
void sdTrace::formatFLX()
{
    FLX->setUpdatesEnabled(false);
    tracegrid::format(*m_grid);
    QHeaderView *header = FLX->horizontalHeader();
    header->setFixedHeight(twips::toPixels(tracegrid::headerHeightTwips, logicalDpiY()));
    // The style's minimum is wider than the N column.
    header->setMinimumSectionSize(twips::toPixels(*std::min_element(tracegrid::columnWidthsTwips.begin(),
                                                                   tracegrid::columnWidthsTwips.end()), logicalDpiX()));
    for (int column = 0; column < tracegrid::columnCount; ++column)
        header->resizeSection(column, twips::toPixels(tracegrid::columnWidthsTwips[column], logicalDpiX()));
    FLX->setUpdatesEnabled(true);
}



