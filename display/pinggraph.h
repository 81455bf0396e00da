#pragma once

#include "display/pinggraphmodel.h"

#include <QGroupBox>

class LevelScale;
class SettingsStore;

// The frame "Ping graph" that paints the graph model: bands, axis with its labels and "P,ms",
// the bars in their level colours and the average line. System colour references resolve
// through this widget's palette. A double click on the frame is only reported: the window stops
// monitoring and rebuilds the frame.
class PingGraph : public QGroupBox
{
    Q_OBJECT

public:
    explicit PingGraph(const LevelScale &levels, QWidget *parent = nullptr);

    const PingGraphModel &model() const { return m_model; }

    // Once the frame has its size: the number of points follows the plot's width now and never again.
    void createPointBuffer();
    void RebuildGraphFrame(const SettingsStore &settings);
    void AddGraphPoint(int32_t time);

    // Where a model rectangle in twips lands in this widget, in pixels.
    QRect toPixels(const QRectF &twips) const;
    // The part of the widget that a new point repaints: bands, axis, bars and average line.
    QRect plotArea() const;

signals:
    void doubleClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

private:
    PingGraphModel::Plot plotForSize() const;
    QTransform twipsToPixels() const;

    PingGraphModel m_model;
};
