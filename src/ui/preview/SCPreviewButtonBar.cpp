#include "ui/preview/SCPreviewButtonBar.h"

#include "core/services/BLLocalizedStrings.h"
#include "ui/preview/SCImageButton.h"

#include <QHBoxLayout>

SCPreviewButtonBar::SCPreviewButtonBar(QWidget* parent) : QWidget(parent)
{
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    const struct
    {
        BLPreviewButtonCtrl::Button button;
        const char* toolTip;
    } order[] = {{BLPreviewButtonCtrl::kTopFrame, "First frame (Up)"},
                 {BLPreviewButtonCtrl::kRW, "Rewind (R)"},
                 {BLPreviewButtonCtrl::kMinusFrame, "One frame back (Left)"},
                 {BLPreviewButtonCtrl::kPlay, "Play (Space)"},
                 {BLPreviewButtonCtrl::kPause, "Pause (Space)"},
                 {BLPreviewButtonCtrl::kPlusFrame, "One frame on (Right)"},
                 {BLPreviewButtonCtrl::kFF, "Fast forward (F)"},
                 {BLPreviewButtonCtrl::kLastFrame, "Last frame (Down)"}};
    for (const auto& entry : order) {
        auto* button = new SCImageButton(this);
        button->setToolTip(BLLocalizedString(QString::fromLatin1(entry.toolTip)));
        m_buttons[size_t(entry.button)] = button;
        layout->addWidget(button);
    }
}

void SCPreviewButtonBar::setButtonImages(int button, const QString& normal, const QString& pressed)
{
    m_buttons.at(size_t(button))->setImages(normal, pressed);
}
