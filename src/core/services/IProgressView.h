#pragma once

#include <QString>

class BLProgressCtrl;

// The progress dialog as its controller sees it: a title, a message line, a
// bar and a Cancel button, shown modally. The GUI implements it with a
// window-modal dialog; tests and command-line tools use BLHeadlessProgressView.
class IProgressView
{
public:
    virtual ~IProgressView() = default;

    virtual void setTitle(const QString& title) = 0;
    virtual void setMessage(const QString& message) = 0;
    // A bar from min to max showing value; its animation stops.
    virtual void setDeterminate(double value, double min, double max) = 0;
    // A bar with no known end, animating.
    virtual void setIndeterminate() = 0;
    virtual void setCancelEnabled(bool enabled) = 0;

    // Shows the dialog modally and returns once endModal() was called, with the
    // dialog hidden. Once the dialog is on screen the view calls the
    // controller's windowDidBecomeMain() (queued on the main thread); the
    // Cancel button calls its onCancel().
    virtual void runModal(BLProgressCtrl* controller) = 0;
    // Ends the modal session started by runModal().
    virtual void endModal() = 0;
};
