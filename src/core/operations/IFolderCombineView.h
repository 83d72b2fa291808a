#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

class BLFolderCombineCtrl;

// The folder-combine dialog as its controller sees it: the destination's
// name, the table of candidate folders (rows with the keys "check", "name"
// and "realName"), the switch to delete the emptied folders, Start and
// Cancel. A tick changed in the table goes to the controller's
// tableViewSelectionDidChange(); Start and Cancel to onStart() and onCancel().
class IFolderCombineView
{
public:
    virtual ~IFolderCombineView() = default;

    virtual void setTitle(const QString& title) = 0;
    virtual void setDestination(const QString& name) = 0;
    virtual void setRows(const QList<QVariantMap>& rows) = 0;
    // The rows with their ticks as the user left them.
    virtual QList<QVariantMap> rows() const = 0;
    virtual bool deleteSwitch() const = 0;
    virtual void setOkEnabled(bool enabled) = 0;

    virtual int runModal(BLFolderCombineCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
