#pragma once

#include <QString>
#include <QStringList>

// The controller of the import dialog: what its buttons do.
class IMP4ImportCtrl
{
public:
    virtual ~IMP4ImportCtrl() = default;
    virtual void onSearch() = 0;
    virtual void onAdd() = 0;
    virtual void onDelete() = 0;
    virtual void onOK() = 0;
    virtual void onCancel() = 0;
};

// The import dialog as its controller sees it: the destination's name, the
// list of files to import (shown by file name), a path field with Search
// (a chooser of MP4 files) and Add, Delete for the selected row, OK and
// Cancel. The buttons go to the controller, which ends the dialog.
class IMP4ImportView
{
public:
    virtual ~IMP4ImportView() = default;

    virtual void setDestination(const QString& name) = 0;
    virtual void setFileNames(const QStringList& names) = 0;
    // The selected row of the list, -1 for none.
    virtual int selectedRow() const = 0;
    virtual QString pathText() const = 0;
    virtual void setPathText(const QString& text) = 0;
    virtual void setAddEnabled(bool enabled) = 0;
    virtual void setDeleteEnabled(bool enabled) = 0;
    virtual void setOKEnabled(bool enabled) = 0;
    // A chooser of MP4 files (several may be chosen); empty when cancelled.
    virtual QStringList chooseFiles() = 0;

    // Shows the dialog modally with its buttons wired to the controller and
    // returns the code given to endModal().
    virtual int runModal(IMP4ImportCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
