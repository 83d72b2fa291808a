#pragma once

#include <QString>

// The time code display of the preview.
class ITimeCodeView
{
public:
    virtual ~ITimeCodeView() = default;

    virtual void setTimeCode(const QString& text) = 0;
};
