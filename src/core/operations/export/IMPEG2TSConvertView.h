#pragma once

#include <QString>

// The export dialog's controller: what its buttons do.
class IMPEG2TSConvertCtrl
{
public:
    virtual ~IMPEG2TSConvertCtrl() = default;
    virtual void onOpenDialog() = 0; // Choose
    virtual void onStart() = 0;
    virtual void onCancel() = 0;
    virtual void onClose() = 0;
};

// The export dialog as its controller sees it: the label and text of the
// destination (a file for one take, a folder for several), the counter
// ("1/3"), the message, the progress bar (0 to 100) and the buttons Choose,
// Start, Cancel and Close. Every call comes on the main thread; texts arrive
// localised.
class IMPEG2TSConvertView
{
public:
    virtual ~IMPEG2TSConvertView() = default;

    virtual void setDestinationLabel(const QString& text) = 0;
    virtual void setPath(const QString& path) = 0;
    virtual QString path() const = 0;
    virtual void setCounter(const QString& text) = 0;
    // Lines are separated by "\r".
    virtual void setMessage(const QString& text) = 0;
    virtual void setProgress(int value) = 0;
    // enabled: the path field, Choose, Start and Close can be used. running:
    // Cancel (enabled) stands in the place of Start.
    virtual void setButtons(bool enabled, bool running) = 0;
    // A folder chooser opening on start; "" when cancelled.
    virtual QString chooseFolder(const QString& start) = 0;

    // Shows the dialog modally with its buttons wired to the controller until endModal().
    virtual void runModal(IMPEG2TSConvertCtrl* ctrl) = 0;
    virtual void endModal() = 0;
    // A run of Start ended: every take exported (the dialog closes next), or
    // stopped by a failure or Cancel (the dialog stays open).
    virtual void exportDidEnd(bool finished) { (void)finished; }
};
