#pragma once

#include <QRectF>
#include <QSizeF>

class IClipSearchView;
class IPreviewView;

// What the main window controller needs from the window itself. Geometry is
// in screen coordinates with y growing downwards; a window frame is the
// position of the window's outer top-left corner and the size of its content.
class IMainWindowView
{
public:
    virtual ~IMainWindowView() = default;

    // The usable area of the main screen.
    virtual QRectF screenFrame() const = 0;
    virtual QRectF windowFrame() const = 0;
    virtual void setWindowFrame(const QRectF& frame) = 0;
    virtual QSizeF minimumWindowSize() const = 0;
    virtual bool isWindowVisible() const = 0;
    // Whether the main window receives the keyboard (no other window, such as
    // a modal dialog, is in front of it).
    virtual bool isKeyWindow() const = 0;

    // The split between the pane area (upper side) and the preview area:
    // by default the panes have two thirds of it, for browsing.
    virtual void setSplitToDefault() = 0;
    // While locked, a change of the window size keeps the preview's height
    // (the panes get what is gained or lost) and the dividers cannot be dragged.
    virtual void setDividersLocked(bool locked) = 0;

    // The view in the preview container that the preview controller drives;
    // none in a window without one.
    virtual IPreviewView* previewView() { return nullptr; }
    // The clip search dialog; none in a window without one.
    virtual IClipSearchView* clipSearchView() { return nullptr; }

    virtual bool isHouseKeepingSheetVisible() const = 0;
    virtual void showHouseKeepingSheet() = 0;
    virtual void closeHouseKeepingSheet() = 0;
};
