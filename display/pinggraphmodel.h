#pragma once

#include <QLineF>
#include <QRectF>

#include <cstdint>
#include <vector>

class LevelScale;
class SettingsStore;

// The ping graph as numbers, kept in twips (1/1440 inch, 15 to a pixel at 96 dpi) as the graph was
// drawn on its frame: one bar per reply on a common baseline, newest at the right, the average
// line, the background bands and the axis labels. It knows no widget; the painter reads it.
class PingGraphModel
{
public:
    static constexpr double BarPitch = 100;
    static constexpr double BarWidth = 50;
    static constexpr double FirstBarOffset = 50; // of the first bar's left edge from the axis
    static constexpr double StepHeight = 200;    // one grid step; 100 ms at a scale of 100 %
    static constexpr double TwipsPerMs = 2;      // at a scale of 100 %

    // Where the plot lies, in twips.
    struct Plot {
        double axisX = 0;        // the vertical axis
        double axisTopY = 0;     // its top end
        double baselineY = 0;    // the baseline
        double width = 0;        // of the baseline, right of the axis
        double lineWidth = 0;    // of the baseline, on which the bars stand
        double labelSpacing = 0; // the least distance between two axis labels
    };

    struct Bar {
        double height = 0;
        int32_t color = 0; // colour value 0x00BBGGRR or a system colour reference
    };

    struct Band {
        QRectF rect;
        int32_t color = 0;
    };

    struct AxisLabel {
        double y = 0;
        int32_t value = 0; // ms
    };

    explicit PingGraphModel(const LevelScale &levels);

    // A new place for the plot (the frame was resized): the bars keep their heights until the next point.
    void setPlot(const Plot &plot);
    const Plot &plot() const { return m_plot; }

    // One point per 100 twips of baseline, all zero; the size stays fixed from then on.
    void createBuffer();
    bool hasBuffer() const { return !m_values.empty(); }

    // Re-reads the scale and the bands from the settings; the bars start again at height 0.
    // Settings that do not convert fail with a RuntimeError and leave the graph as it was.
    void RebuildGraphFrame(const SettingsStore &settings);

    // The newest reply time in ms; a lost reply is 0. Fails with a RuntimeError when a level does
    // not convert, when no buffer exists, or at a scale of 0.
    void AddGraphPoint(int32_t time);

    float PingScale() const { return m_pingScale; }
    void setPingScale(float scale) { m_pingScale = scale; }

    int16_t PointCount() const { return m_pointCount; }
    const std::vector<float> &PointValues() const { return m_values; }
    const std::vector<float> &PointShadow() const { return m_shadow; }

    double plotHeight() const { return m_plot.baselineY - m_plot.axisTopY; }
    // The right end of bands, baseline and average line: under the last bar, which may stand past
    // the plot's width by up to one pitch.
    double plotRight() const;
    int32_t steps() const;
    // The value of the top axis label, in ms: the cap of the bars.
    int32_t TopValue() const;

    const std::vector<Bar> &bars() const { return m_bars; }
    QRectF barRect(int index) const;
    std::vector<Band> shpBackColor() const;
    std::vector<AxisLabel> lbY() const;

    bool averageVisible() const { return m_averageVisible; }
    double averageHeight() const { return m_averageHeight; }
    QLineF lnAVG() const;

private:
    struct BandBound {
        int32_t value = 0; // ms
        int32_t color = 0;
    };

    double barHeight(float time) const;

    const LevelScale &m_levels;
    Plot m_plot;
    float m_pingScale = 1.0f;
    int32_t m_scalePercent = 100;
    int16_t m_pointCount = -1;
    std::vector<float> m_values;
    std::vector<float> m_shadow;
    std::vector<Bar> m_bars;
    std::vector<BandBound> m_bands;
    bool m_averageVisible = false;
    double m_averageHeight = 0;
};
