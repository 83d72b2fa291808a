#include "ui/preview/SCTimeCodeField.h"

#include "core/app/preview/BLTimeCodeCtrl.h"

#include <QFontDatabase>
#include <QPainter>

SCTimeCodeField::SCTimeCodeField(QWidget* parent) : QWidget(parent), m_text(BLTimeCodeCtrl::kZeroTimeCode)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(font.pointSizeF() * 1.2);
    font.setBold(true);
    setFont(font);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void SCTimeCodeField::setTimeCode(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    update();
}

QSize SCTimeCodeField::sizeHint() const
{
    const QFontMetrics metrics(font());
    return {metrics.horizontalAdvance(BLTimeCodeCtrl::kZeroTimeCode) + 16, metrics.height() + 8};
}

void SCTimeCodeField::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QColor(0x40, 0x40, 0x40));
    painter.setBrush(QColor(0x1c, 0x1c, 0x1c));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    painter.setPen(QColor(0x7d, 0xe0, 0x7d));
    painter.drawText(rect(), Qt::AlignCenter, m_text);
}
