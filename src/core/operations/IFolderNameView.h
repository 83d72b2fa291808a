#pragma once

#include <QString>

class BLFolderNameCtrl;

// The folder-name dialog as its controller sees it: a title, a prompt, the
// location the folder is in, the name field, OK and Cancel. OK and Cancel go to
// the controller's OnOK() and OnCancel(), which end the dialog when they are
// done with it. Texts arrive localised.
class IFolderNameView
{
public:
    virtual ~IFolderNameView() = default;

    virtual void setTitle(const QString& title) = 0;
    virtual void setMessage(const QString& message) = 0;
    // The location shown: the display name of the folder the name is made in.
    virtual void setFolderPath(const QString& location) = 0;
    virtual void setInputFolderName(const QString& name) = 0;
    virtual QString inputFolderName() const = 0;

    // Shows the dialog modally with its buttons wired to the controller and
    // returns the code given to endModal().
    virtual int runModal(BLFolderNameCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
