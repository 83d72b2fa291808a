#pragma once

#include "core/app/preview/BLPreviewButtonCtrl.h"
#include "core/app/preview/IPreviewButtonView.h"

#include <QWidget>

#include <array>

class SCImageButton;

// The row of transport buttons: first frame, rewind, one frame back, play,
// pause, one frame on, fast forward, last frame.
class SCPreviewButtonBar : public QWidget, public IPreviewButtonView
{
    Q_OBJECT
public:
    explicit SCPreviewButtonBar(QWidget* parent = nullptr);

    // The button of a BLPreviewButtonCtrl::Button.
    SCImageButton* button(int which) const { return m_buttons.at(size_t(which)); }

    void setButtonImages(int button, const QString& normal, const QString& pressed) override;

private:
    std::array<SCImageButton*, BLPreviewButtonCtrl::kButtonCount> m_buttons{};
};
