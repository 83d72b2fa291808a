#include "ui/preview/SCImageButton.h"

#include <QPainter>
#include <QSvgRenderer>

namespace {

constexpr QSize kSize(36, 26);

QPixmap renderImage(const QString& name, qreal ratio)
{
    QSvgRenderer renderer(QStringLiteral(":/images/%1.svg").arg(name));
    QPixmap pixmap(kSize * ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

} // namespace

SCImageButton::SCImageButton(QWidget* parent) : QAbstractButton(parent)
{
    setFocusPolicy(Qt::NoFocus);
}

void SCImageButton::setImages(const QString& normal, const QString& pressed)
{
    if (normal == m_normalName && pressed == m_pressedName)
        return;
    m_normalName = normal;
    m_pressedName = pressed;
    m_normal = renderImage(normal, devicePixelRatioF());
    m_pressed = renderImage(pressed, devicePixelRatioF());
    update();
}

QSize SCImageButton::sizeHint() const
{
    return kSize;
}

void SCImageButton::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (!isEnabled())
        painter.setOpacity(0.5);
    const QPixmap& pixmap = isDown() ? m_pressed : m_normal;
    const QSize size = pixmap.deviceIndependentSize().toSize();
    painter.drawPixmap((width() - size.width()) / 2, (height() - size.height()) / 2, pixmap);
}
