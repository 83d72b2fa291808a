#pragma once

#include <QString>

// The confirmation before a folder is deleted, as its controller sees it: the
// question and the folder it is about, with a Yes button (first) and a No
// button. Texts arrive localised.
class IDeleteFolderView
{
public:
    virtual ~IDeleteFolderView() = default;

    // Shows the question modally; true only for the first button.
    virtual bool confirmDelete(const QString& message, const QString& folderName) = 0;
};
