#include "core/window/statuslamp.h"

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
    painter.setBrush(QColor(int(m_fillColor & 0xFF), int((m_fillColor >> 8) & 0xFF), int((m_fillColor >> 16) & 0xFF)));
    const int side = qMin(width(), height()) - 2;
    painter.drawEllipse(QRect((width() - side) / 2, (height() - side) / 2, side, side));
}
