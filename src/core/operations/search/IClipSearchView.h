#pragma once

#include <QDate>
#include <QString>
#include <QVariantMap>

class BLClipSearchCtrl;

// The clip search dialog as its controller sees it: the conditions (title,
// comment, the date-range choice and the two dates of the user's own range),
// the folder searched, a status message, the result rows, and the buttons
// Search, Cancel and Close, which go to the controller's onSearch(),
// onCancel() and onClose(); a double click on a row goes to
// doubleClickAction(), a change of the range choice to onInterval().
class IClipSearchView
{
public:
    virtual ~IClipSearchView() = default;

    virtual QString titleText() const = 0;
    virtual QString commentText() const = 0;
    // The range choice: 0 none, 1 the last week, 2 month, 3 year, 4 the two dates.
    virtual int interval() const = 0;
    virtual QDate dateFrom() const = 0;
    virtual QDate dateTo() const = 0;
    virtual void setTitleText(const QString& text) = 0;
    virtual void setCommentText(const QString& text) = 0;
    virtual void setInterval(int interval) = 0;
    virtual void setDates(const QDate& from, const QDate& to) = 0;
    virtual void setDatePickersEnabled(bool enabled) = 0;
    virtual void setPlace(const QString& place) = 0;
    virtual void setMessage(const QString& message) = 0;

    // While searching the spinner turns and only Cancel is enabled;
    // otherwise the conditions, Search and Close are, and Cancel is not.
    virtual void setSearching(bool searching) = 0;
    virtual void setCancelEnabled(bool enabled) = 0;

    virtual void clearRows() = 0;
    // A result row; index is its place in the controller's rows.
    virtual void addRow(int index, const QVariantMap& row) = 0;
    // The controller's index of the selected row, or -1.
    virtual int selectedRow() const = 0;

    // Shows the dialog modally with its buttons wired to the controller and
    // returns the code given to endModal().
    virtual int runModal(BLClipSearchCtrl* ctrl) = 0;
    virtual void endModal(int code) = 0;
};
