#include "display/pinggraphmodel.h"

#include "core/levelscale.h"
#include "core/runtimeerror.h"
#include "core/textnumbers.h"
#include "platform/settingsstore.h"

#include <algorithm>
#include <cmath>

namespace {

RuntimeError divisionByZero()
{
    return {11, QStringLiteral("Division by zero")};
}

} // namespace

PingGraphModel::PingGraphModel(const LevelScale &levels)
    : m_levels(levels)
{
}

void PingGraphModel::setPlot(const Plot &plot)
{
    m_plot = plot;
}

void PingGraphModel::createBuffer()
{
    m_pointCount = textnumbers::toInteger(std::floor(std::max(0.0, m_plot.width) / BarPitch));
    m_values.assign(m_pointCount + 1, 0.0f);
    m_shadow.assign(m_pointCount + 1, 0.0f);
    m_bars.assign(m_pointCount + 1, Bar{});
}

void PingGraphModel::RebuildGraphFrame(const SettingsStore &settings)
{
    const LevelScale::BackScale back = m_levels.LoadBackScale(settings);
    std::vector<BandBound> bands;
    for (qsizetype k = 0; k < back.BackLevel; ++k)
        bands.push_back({textnumbers::toLong(textnumbers::item(back.BackValues, k)), back.backColor(k)});
    const int32_t percent =
        textnumbers::toInteger(settings.GetSetting(QStringLiteral("Load"), QStringLiteral("PingScale"), QStringLiteral("100")));

    m_bands = std::move(bands);
    m_scalePercent = percent;
    m_pingScale = float(percent) / 100.0f;
    for (Bar &bar : m_bars)
        bar.height = 0;
}

void PingGraphModel::AddGraphPoint(int32_t time)
{
    if (m_values.empty())
        throw RuntimeError::subscriptOutOfRange();
    const int last = m_pointCount;
    for (int i = 0; i < last; ++i)
        m_values[i] = m_shadow[i + 1];
    m_values[last] = float(time);

    double sum = 0;
    int count = 0;
    for (int i = 0; i <= last; ++i) {
        const float value = m_values[i];
        if (value > 0) {
            sum += value;
            ++count;
        }
        m_shadow[i] = value;
        m_bars[i].color = m_levels.LevelColorForGraph(value);
        m_bars[i].height = barHeight(value);
    }

    m_averageVisible = sum > 0;
    if (m_averageVisible)
        m_averageHeight = TwipsPerMs * (sum / m_pingScale) / count;
}

double PingGraphModel::barHeight(float time) const
{
    if (m_pingScale == 0)
        throw divisionByZero();
    const int32_t cap = TopValue();
    return TwipsPerMs * (time > float(cap) ? cap : time) / m_pingScale;
}

int32_t PingGraphModel::steps() const
{
    return int32_t(std::max(0.0, std::floor(plotHeight() / StepHeight)));
}

int32_t PingGraphModel::TopValue() const
{
    return m_scalePercent * steps();
}

double PingGraphModel::plotRight() const
{
    return m_plot.axisX + std::max(m_plot.width, BarPitch * (m_pointCount + 1));
}

QRectF PingGraphModel::barRect(int index) const
{
    const double height = m_bars[index].height;
    return {m_plot.axisX + BarPitch * index + FirstBarOffset, m_plot.baselineY - height + m_plot.lineWidth, BarWidth,
            height};
}

std::vector<PingGraphModel::Band> PingGraphModel::shpBackColor() const
{
    const double plotHeight = this->plotHeight();
    const double width = plotRight() - m_plot.axisX;
    const int32_t top = TopValue();
    std::vector<Band> bands;
    bands.reserve(m_bands.size());
    for (const BandBound &bound : m_bands) {
        // A plot lower than one grid step has no scale to measure a band against.
        const double height = top == 0 ? 0.0 : double(bound.value) * plotHeight / top;
        bands.push_back({QRectF(m_plot.axisX, m_plot.baselineY - height, width, height), bound.color});
    }
    return bands;
}

std::vector<PingGraphModel::AxisLabel> PingGraphModel::lbY() const
{
    // Counted down from the top so that the top label, the cap, is always there.
    const int32_t stride = std::max<int32_t>(1, int32_t(std::ceil(m_plot.labelSpacing / StepHeight)));
    std::vector<AxisLabel> labels;
    for (int32_t step = steps(); step >= 0; step -= stride)
        labels.push_back({m_plot.baselineY - StepHeight * step, m_scalePercent * step});
    std::reverse(labels.begin(), labels.end());
    return labels;
}

QLineF PingGraphModel::lnAVG() const
{
    const double y = m_plot.baselineY - m_averageHeight;
    return {m_plot.axisX, y, plotRight(), y};
}
