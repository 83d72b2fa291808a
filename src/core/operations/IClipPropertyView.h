#pragma once

#include <QImage>
#include <QString>

class BLClipPropertyCtrl;

// The clip property dialog as its controller sees it: the window title, a
// picture and one text per property. Title, alias, description and creator
// can be edited; OK and Cancel go to the controller's OnOK() and OnCancel(),
// which end the dialog when they are done with it.
class IClipPropertyView
{
public:
    enum Field
    {
        TakeId,
        UsAscii,     // the title (editable)
        ValueAlias,  // editable
        Description, // editable
        Creator,     // editable
        Status,
        RecodingMode,
        CreationDate,
        LastUpDate,
        Duration,
        Size,
        VideoFormat,
        AudioFormat,
        MediaSpanning,
        Device,
        FieldCount
    };

    virtual ~IClipPropertyView() = default;

    virtual void setTitle(const QString& title) = 0;
    virtual void setPicture(const QImage& picture) = 0;
    virtual void setField(Field field, const QString& text) = 0;
    virtual QString field(Field field) const = 0;

    // Shows the dialog modally with its buttons wired to the controller and
    // returns the code given to endModal().
    virtual int runModal(BLClipPropertyCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
