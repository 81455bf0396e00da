#include "display/pinggraph.h"

#include "core/colorvalue.h"
#include "core/twips.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int tickLength = 4; // px, the marks of the labelled steps on the axis
constexpr int labelGap = 2;   // px between a label and its mark

const QString unitLabel = QStringLiteral("P,ms");

// Edges are rounded one by one so that neighbouring bars keep an even pitch.
QRect pixelRect(const QTransform &twipsToPixels, const QRectF &twips)
{
    const QRectF mapped = twipsToPixels.mapRect(twips);
    const int left = qRound(mapped.left());
    const int top = qRound(mapped.top());
    return {left, top, qRound(mapped.right()) - left, qRound(mapped.bottom()) - top};
}

} // namespace

PingGraph::PingGraph(const LevelScale &levels, QWidget *parent)
    : QGroupBox(QStringLiteral("Ping graph"), parent)
    , m_model(levels)
{
    setObjectName(QStringLiteral("fraGraph"));
    setToolTip(QStringLiteral("DoubleClick and set points colors and scale of graph"));
    m_model.setPlot(plotForSize());
}

void PingGraph::createPointBuffer()
{
    ensurePolished(); // the style sets the margins around the title
    m_model.setPlot(plotForSize());
    m_model.createBuffer();
    update(plotArea());
}

void PingGraph::RebuildGraphFrame(const SettingsStore &settings)
{
    m_model.RebuildGraphFrame(settings);
    update();
}

void PingGraph::AddGraphPoint(int32_t time)
{
    m_model.AddGraphPoint(time);
    update(plotArea());
}

QTransform PingGraph::twipsToPixels() const
{
    return QTransform::fromScale(logicalDpiX() / twips::PerInch, logicalDpiY() / twips::PerInch);
}

QRect PingGraph::toPixels(const QRectF &twips) const
{
    return pixelRect(twipsToPixels(), twips);
}

PingGraphModel::Plot PingGraph::plotForSize() const
{
    const QRect content = contentsRect();
    const QFontMetrics metrics = fontMetrics();
    const int labelWidth = std::max(metrics.horizontalAdvance(QStringLiteral("00000")), metrics.horizontalAdvance(unitLabel));
    const QTransform toTwips = twipsToPixels().inverted();
    const QPointF topLeft = toTwips.map(QPointF(content.left() + labelWidth + labelGap + tickLength,
                                                content.top() + metrics.height() * 3 / 2));
    const QPointF bottomRight = toTwips.map(QPointF(content.right() + 1, content.bottom() - metrics.height() / 2));

    PingGraphModel::Plot plot;
    plot.axisX = topLeft.x();
    plot.axisTopY = topLeft.y();
    plot.baselineY = bottomRight.y();
    // The last bar stands up to one pitch right of the baseline's end.
    plot.width = std::max(0.0, bottomRight.x() - PingGraphModel::BarPitch - plot.axisX);
    plot.lineWidth = toTwips.map(QPointF(0, 1)).y() - toTwips.map(QPointF(0, 0)).y();
    plot.labelSpacing = metrics.height() * plot.lineWidth;
    return plot;
}

QRect PingGraph::plotArea() const
{
    const PingGraphModel::Plot &plot = m_model.plot();
    return toPixels(QRectF(plot.axisX, plot.axisTopY, m_model.plotRight() - plot.axisX,
                           plot.baselineY + plot.lineWidth - plot.axisTopY))
        & contentsRect();
}

void PingGraph::paintEvent(QPaintEvent *event)
{
    QGroupBox::paintEvent(event);

    QPainter painter(this);
    const QTransform toPixels = twipsToPixels();
    const QPalette &colours = palette();
    const QRect area = plotArea();
    const QColor lineColour = colours.color(QPalette::WindowText);
    const int axisX = area.left();
    const int baselineY = pixelRect(toPixels, QRectF(0, m_model.plot().baselineY, 0, 0)).top();

    if (!area.contains(event->rect())) {
        painter.setPen(lineColour);
        const QFontMetrics metrics = fontMetrics();
        const int labelRight = axisX - tickLength - labelGap;
        for (const PingGraphModel::AxisLabel &label : m_model.lbY()) {
            const int y = pixelRect(toPixels, QRectF(0, label.y, 0, 0)).top();
            painter.drawLine(axisX - tickLength, y, axisX - 1, y);
            painter.drawText(QRect(0, y - metrics.height() / 2, labelRight, metrics.height()),
                             Qt::AlignRight | Qt::AlignVCenter, QString::number(label.value));
        }
        // Above the top label, which is centred on the axis's end.
        painter.drawText(QRect(0, area.top() - metrics.height() * 3 / 2, labelRight, metrics.height()),
                         Qt::AlignRight | Qt::AlignVCenter, unitLabel);
    }

    painter.setClipRect(area);
    // All bands stand on the baseline and later ones lie over earlier ones: each is filled only
    // above those that follow it.
    const std::vector<PingGraphModel::Band> bands = m_model.shpBackColor();
    int coveredTop = baselineY + 1;
    for (auto band = bands.rbegin(); band != bands.rend(); ++band) {
        QRect visible = pixelRect(toPixels, band->rect);
        const int top = visible.top();
        visible.setBottom(std::min(visible.bottom(), coveredTop - 1));
        if (!visible.isEmpty())
            painter.fillRect(visible, colorvalue::toColor(band->color, colours));
        coveredTop = std::min(coveredTop, top);
    }

    painter.setPen(lineColour);
    painter.drawLine(axisX, area.top(), axisX, baselineY);
    painter.drawLine(axisX, baselineY, area.right(), baselineY);

    const std::vector<PingGraphModel::Bar> &bars = m_model.bars();
    for (int i = 0; i < int(bars.size()); ++i) {
        if (bars[size_t(i)].height > 0)
            painter.fillRect(pixelRect(toPixels, m_model.barRect(i)), colorvalue::toColor(bars[size_t(i)].color, colours));
    }

    if (m_model.averageVisible())
        painter.drawLine(toPixels.map(m_model.lnAVG()).toLine());
}

void PingGraph::resizeEvent(QResizeEvent *event)
{
    QGroupBox::resizeEvent(event);
    m_model.setPlot(plotForSize());
}

void PingGraph::changeEvent(QEvent *event)
{
    QGroupBox::changeEvent(event);
    // The margins for the labels and the title follow the font and the style.
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ContentsRectChange)
        m_model.setPlot(plotForSize());
}

void PingGraph::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QGroupBox::mouseDoubleClickEvent(event);
        return;
    }
    emit doubleClicked();
}
