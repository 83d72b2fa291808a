#pragma once

#include <QString>

// The audio channel choice of the preview: a stereo/mono button and one box
// per channel (tags 1 and 2).
class IAudioChannelView
{
public:
    virtual ~IAudioChannelView() = default;

    virtual void setStereoButtonTitle(const QString& title) = 0;
    virtual void setChannelBox(int tag, bool ticked, bool enabled) = 0;
};
