#pragma once

#include <QString>

class BLMediaNameChangeCtrl;

// The media-name dialog as its controller sees it: one name field, OK and
// Cancel, which go to the controller's onOK() and onCancel().
class IMediaNameChangeView
{
public:
    virtual ~IMediaNameChangeView() = default;

    virtual void setTitle(const QString& title) = 0;
    virtual void setMediaName(const QString& name) = 0;
    virtual QString mediaName() const = 0;

    virtual int runModal(BLMediaNameChangeCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
