#pragma once

#include <QString>
#include <QStringList>

class BLFolderDivisionCtrl;

// The folder-division dialog as its controller sees it: the folder's name,
// the capacity in GB (chosen from a list or typed), Start and Cancel, which go
// to the controller's onStart() and onCancel(). Texts arrive localised.
class IFolderDivisionView
{
public:
    virtual ~IFolderDivisionView() = default;

    virtual void setTitle(const QString& title) = 0;
    virtual void setFolderName(const QString& name) = 0;
    // The capacities offered and the one preselected.
    virtual void setCapacities(const QStringList& capacities, int selected) = 0;
    virtual QString capacityText() const = 0;

    // Shows the dialog modally with its buttons wired to the controller and
    // returns the code given to endModal().
    virtual int runModal(BLFolderDivisionCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
