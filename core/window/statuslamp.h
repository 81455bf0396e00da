#pragma once

#include <QWidget>

#include <cstdint>

// The round status lamp: a filled circle in a colour value 0x00BBGGRR.
class StatusLamp : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(uint fillColor READ fillColor)

public:
    explicit StatusLamp(QWidget *parent = nullptr);

    uint32_t fillColor() const { return m_fillColor; }
    void setFillColor(uint32_t colour);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    uint32_t m_fillColor = 0xC0C0C0;
};
