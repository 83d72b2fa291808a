#pragma once

#include "core/card/DOTakeData.h"

#include <QList>
#include <QString>

// A media pane as the operations see it: the folders it shows and its takes,
// and the way to tell it that its folder has gone. The operations run without
// panes too (the command-line tools), so every use allows for none.
class IOperationPane
{
public:
    virtual ~IOperationPane() = default;

    // "" when the pane shows the volume list.
    virtual QString getWorkFolder() const = 0;
    // "" when no folder is selected.
    virtual QString getSelectFolder() const = 0;
    // The takes the pane shows.
    virtual const QList<DOTakeData>& getTakeData() const = 0;
    // The pane's folder has gone; the message has already been shown.
    virtual void notFoundSelectFolderNoMessage() = 0;
};
