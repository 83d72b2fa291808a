#pragma once

#include <QString>

class IClipPropertyView;
class IClipTransferView;
class IDeleteFolderView;
class IFolderCombineView;
class IFolderDivisionView;
class IFolderNameView;
class IMP4ImportView;
class IMPEG2TSConvertView;
class IMediaNameChangeView;
class IOffloadView;

// A media pane as its controller sees it: the texts under the grid, the tool
// buttons (each identified by the menu tag of its command), the divider
// between the folder list and the grid, and the dialogs the pane's folder
// commands open. The folder list and the grid are item models of the
// controller that the view shows.
class IMediaInfoView
{
public:
    virtual ~IMediaInfoView() = default;

    virtual void setFolderName(const QString& text) = 0;
    virtual void setFolderSize(const QString& text) = 0;
    virtual void setVolumeSize(const QString& text) = 0;
    virtual void setToolButtonEnabled(int tag, bool enabled) = 0;
    // While locked, the divider keeps its place when the pane is resized.
    virtual void setDividerLocked(bool locked) = 0;

    // A folder chooser (folders only) opening on start; "" when cancelled.
    virtual QString chooseFolder(const QString& start) = 0;
    virtual IFolderNameView& folderNameView() = 0;
    virtual IDeleteFolderView& deleteFolderView() = 0;
    virtual IClipTransferView& clipCopyView() = 0;
    virtual IClipTransferView& clipMoveView() = 0;
    // The clip property dialog; none in a pane without one.
    virtual IClipPropertyView* clipPropertyView() { return nullptr; }
    // The dialogs of the Folder menu; none where the view has no dialogs.
    virtual IFolderDivisionView* folderDivisionView() { return nullptr; }
    virtual IFolderCombineView* folderCombineView() { return nullptr; }
    virtual IMediaNameChangeView* mediaNameChangeView() { return nullptr; }
    // The export dialog; none where the view has no dialogs.
    virtual IMPEG2TSConvertView* mpeg2tsConvertView() { return nullptr; }
    // The import dialog; null where the view has none.
    virtual IMP4ImportView* mp4ImportView() { return nullptr; }
    // The offload dialog; null where the view has none.
    virtual IOffloadView* offloadView() { return nullptr; }
};
