#pragma once

#include <QString>
#include <QStringList>

class BLOffloadCtrl;

// The offload dialog as its controller sees it: the card, the destination
// folders chosen (each line with its free space), Add, Remove, Start and
// Cancel, which go to the controller's onAdd(), onRemove(), onStart() and
// onCancel().
class IOffloadView
{
public:
    virtual ~IOffloadView() = default;

    virtual void setSource(const QString& text) = 0;
    virtual void setDestinations(const QStringList& lines) = 0;
    // The row selected in the destination list, or -1.
    virtual int selectedDestination() const = 0;
    virtual void setAddEnabled(bool enabled) = 0;
    // A folder chooser; "" when cancelled.
    virtual QString chooseFolder() = 0;

    // Shows the dialog modally wired to the controller; the code given to endModal().
    virtual int runModal(BLOffloadCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
