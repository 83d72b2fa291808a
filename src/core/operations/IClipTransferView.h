#pragma once

#include <QString>

// The controller of a copy or move dialog: what its OK and Cancel buttons do.
class IClipTransferCtrl
{
public:
    virtual ~IClipTransferCtrl() = default;
    virtual void onOK() = 0;
    virtual void onCancel() = 0;
};

// The copy or move dialog as its controller sees it: a title, a prompt, the
// source folder's name, the destination folder's name (editable), OK and
// Cancel. OK and Cancel go to the controller's onOK() and onCancel(), which
// end the dialog when they are done with it. Texts arrive localised.
class IClipTransferView
{
public:
    virtual ~IClipTransferView() = default;

    virtual void setTitle(const QString& title) = 0;
    virtual void setMessage(const QString& message) = 0;
    virtual void setSource(const QString& name) = 0;
    virtual void setDestination(const QString& name) = 0;
    virtual QString destination() const = 0;

    // Shows the dialog modally with its buttons wired to the controller and
    // returns the code given to endModal().
    virtual int runModal(IClipTransferCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
