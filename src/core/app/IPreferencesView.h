#pragma once

#include <QString>

// The Preferences dialog as its controller sees it: four choices, a sample
// text and the modal run.
class IPreferencesView
{
public:
    virtual ~IPreferencesView() = default;

    // Date order: row 0 year-month-day, row 1 day-month-year, row 2 month-day-year.
    virtual int dateOrderRow() const = 0;
    virtual void setDateOrderRow(int row) = 0;
    // Selects the separator whose title equals the text; false when none does
    // (the selection then stays as it was).
    virtual bool selectSeparator(const QString& title) = 0;
    virtual QString selectedSeparator() const = 0;
    // Preview resolution: row 0 full, row 1 half, row 2 quarter.
    virtual int resolutionRow() const = 0;
    virtual void setResolutionRow(int row) = 0;
    // Whether copied files are read back and compared with their source.
    virtual bool verifyCopy() const = 0;
    virtual void setVerifyCopy(bool verify) = 0;
    virtual void setSampleText(const QString& text) = 0;

    // Shows the dialog and returns the code it was ended with.
    virtual int runModal() = 0;
    virtual void endModal(int code) = 0;
};
