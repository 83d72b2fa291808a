#pragma once

#include <QtGlobal>

// The time slider under the preview picture. Its value runs from 0 to
// maxValue(); the user's moves reach BLTimeSliderCtrl::sliderDidMove.
class ITimeSliderView
{
public:
    virtual ~ITimeSliderView() = default;

    virtual qint64 maxValue() const = 0;
    virtual void setSliderValue(qint64 value) = 0;
    virtual void setSliderEnabled(bool enabled) = 0;
};
