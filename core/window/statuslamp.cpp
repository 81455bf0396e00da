#include "core/window/statuslamp.h"

#include "core/colorvalue.h"

#include <QPainter>

StatusLamp::StatusLamp(QWidget *parent)
    : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StatusLamp::setFillColor(uint32_t colour)
{
    if (colour == m_fillColor)
        return;
    m_fillColor = colour;
    update();
}

QSize StatusLamp::sizeHint() const
{
    const int side = fontMetrics().height();
    return {side, side};
}

void StatusLamp::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.setBrush(colorvalue::toColor(int32_t(m_fillColor), palette()));
    const int side = qMin(width(), height()) - 2;
    painter.drawEllipse(QRect((width() - side) / 2, (height() - side) / 2, side, side));
}
