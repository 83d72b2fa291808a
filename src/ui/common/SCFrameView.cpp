#include "ui/common/SCFrameView.h"

#include <QPainter>
#include <QSvgRenderer>
#include <QVBoxLayout>

#include <array>
#include <memory>

namespace {
enum Piece
{
    Left,
    Top,
    Right,
    Bottom,
    TopLeft,
    BottomLeft,
    TopRight,
    BottomRight,
    PieceCount
};

const std::array<std::unique_ptr<QSvgRenderer>, PieceCount>& pieces()
{
    static const auto loaded = [] {
        static const char* const kNames[PieceCount] = {
            "waku_left",    "waku_up_middle",   "waku_right",    "waku_bottom_middle",
            "waku_up_left", "waku_bottom_left", "waku_up_right", "waku_bottom_right"};
        std::array<std::unique_ptr<QSvgRenderer>, PieceCount> renderers;
        for (int i = 0; i < PieceCount; ++i)
            renderers[i] = std::make_unique<QSvgRenderer>(
                QStringLiteral(":/images/%1.svg").arg(QLatin1String(kNames[i])));
        return renderers;
    }();
    return loaded;
}
} // namespace

QColor SCFrameView::backgroundColor()
{
    return QColor::fromRgbF(0.95294118f, 0.95294118f, 0.95294118f, 1.0f);
}

SCFrameView::SCFrameView(QWidget* parent) : QWidget(parent), m_contentView(new QWidget(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kBorder, kBorder, kBorder, kBorder);
    layout->setSpacing(0);
    layout->addWidget(m_contentView);
    QPalette palette = m_contentView->palette();
    palette.setColor(QPalette::Window, backgroundColor());
    m_contentView->setPalette(palette);
    m_contentView->setAutoFillBackground(true);
}

void SCFrameView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int w = width();
    const int h = height();
    const int b = kBorder;
    painter.fillRect(QRect(b, b, w - 2 * b, h - 2 * b), backgroundColor());
    const QRectF places[PieceCount] = {
        QRectF(0, b, b, h - 2 * b),     QRectF(b, 0, w - 2 * b, b), QRectF(w - b, b, b, h - 2 * b),
        QRectF(b, h - b, w - 2 * b, b), QRectF(0, 0, b, b),         QRectF(0, h - b, b, b),
        QRectF(w - b, 0, b, b),         QRectF(w - b, h - b, b, b)};
    const auto& renderers = pieces();
    for (int i = 0; i < PieceCount; ++i)
        if (renderers[i]->isValid())
            renderers[i]->render(&painter, places[i]);
}
