#pragma once

#include <QString>

// The row of transport buttons under the preview picture.
class IPreviewButtonView
{
public:
    virtual ~IPreviewButtonView() = default;

    // The images of a button (BLPreviewButtonCtrl::Button) when up and when
    // held down, by resource name ("macbtn_play_n").
    virtual void setButtonImages(int button, const QString& normal, const QString& pressed) = 0;
};
