#pragma once

#include "core/operations/search/IClipSearchView.h"

#include <QDialog>

class QButtonGroup;
class QDateEdit;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class QStandardItemModel;
class QTableView;

// The clip search dialog: title and comment fields, the date-range choice
// with its two dates, the folder searched, the result table (sortable by its
// columns), a status line with a busy indicator, and Search, Cancel and
// Close. A double click on a result chooses it. Every action goes through
// the controller.
class ClipSearchDialog : public QDialog, public IClipSearchView
{
public:
    explicit ClipSearchDialog(QWidget* parent = nullptr);

    QLineEdit* titleField() const { return m_title; }
    QTableView* tableView() const { return m_tableView; }
    QPushButton* searchButton() const { return m_searchButton; }
    QPushButton* cancelButton() const { return m_cancelButton; }
    QPushButton* closeButton() const { return m_closeButton; }

    // IClipSearchView
    QString titleText() const override;
    QString commentText() const override;
    int interval() const override;
    QDate dateFrom() const override;
    QDate dateTo() const override;
    void setTitleText(const QString& text) override;
    void setCommentText(const QString& text) override;
    void setInterval(int interval) override;
    void setDates(const QDate& from, const QDate& to) override;
    void setDatePickersEnabled(bool enabled) override;
    void setPlace(const QString& place) override;
    void setMessage(const QString& message) override;
    void setSearching(bool searching) override;
    void setCancelEnabled(bool enabled) override;
    void clearRows() override;
    void addRow(int index, const QVariantMap& row) override;
    int selectedRow() const override;
    int runModal(BLClipSearchCtrl* ctrl) override;
    void endModal(int code) override;

    void reject() override;

private:
    QLineEdit* m_title;
    QLineEdit* m_comment;
    QButtonGroup* m_interval;
    QDateEdit* m_dateFrom;
    QDateEdit* m_dateTo;
    QLabel* m_place;
    QLabel* m_message;
    QProgressBar* m_progress;
    QStandardItemModel* m_arrayCtrl;
    QTableView* m_tableView;
    QPushButton* m_searchButton;
    QPushButton* m_cancelButton;
    QPushButton* m_closeButton;
    BLClipSearchCtrl* m_ctrl = nullptr;
};
