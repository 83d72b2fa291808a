#include "ui/app/PreferencesDialog.h"
#include "core/app/BLPreferencesCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationNames.h"
#include "support/NotificationRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"
#include "support/UserInput.h"

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDate>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

class PreferencesDialogTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        cwtest::writeSettings(home().configHome(), {{"DATE_FORMAT", qint64(2)},
                                                    {"DATE_PAUSE_CHAR", "-"},
                                                    {"LOW_RESOLUTION", qint64(2)},
                                                    {"VERIFY_COPY", qint64(0)}});
        dialog = std::make_unique<PreferencesDialog>();
        ctrl = std::make_unique<BLPreferencesCtrl>(*dialog);
        dialog->setController(ctrl.get());
    }
    void TearDown() override
    {
        ctrl.reset();
        dialog.reset();
        HomeTest::TearDown();
    }

    // Runs the dialog modally while the user does what the script says.
    void runAsUser(const std::function<void()>& script)
    {
        QTimer::singleShot(0, dialog.get(), script);
        ctrl->showModal();
    }
    void choose(QButtonGroup* group, int row) { group->button(row)->click(); }
    QPushButton* button(QDialogButtonBox::StandardButton which)
    {
        return cwtest::dialogButton(dialog.get(), which);
    }
    static QString today(const QString& pattern) { return QDate::currentDate().toString(pattern); }

    std::unique_ptr<PreferencesDialog> dialog;
    QStringList posted() const
    {
        QStringList names;
        for (const SCNotification& note : m_posted.notes)
            names << note.name;
        return names;
    }

    std::unique_ptr<BLPreferencesCtrl> ctrl;
    cwtest::NotificationRecorder m_posted{
        {SC::SCDateFormatDidChangeNotification, SC::SCResolutionDidChangeNotification}};
};

TEST_F(PreferencesDialogTest, ShowsTheStoredChoicesAndASampleThatFollowsThem)
{
    ctrl->readData();
    ctrl->showSample();
    EXPECT_EQ(dialog->orderDateGroup()->checkedId(), 1); // stored 2: day-month-year
    EXPECT_EQ(dialog->pauseCharPopUp()->currentText(), "-");
    EXPECT_EQ(dialog->orderResolutionGroup()->checkedId(), 2);
    EXPECT_FALSE(dialog->verifyCopyBox()->isChecked());
    EXPECT_EQ(dialog->sampleField()->text(), today("dd-MM-yyyy"));

    choose(dialog->orderDateGroup(), 2);
    EXPECT_EQ(dialog->sampleField()->text(), today("MM-dd-yyyy"));
    dialog->pauseCharPopUp()->setCurrentText(".");
    EXPECT_EQ(dialog->sampleField()->text(), today("MM.dd.yyyy"));
    choose(dialog->orderDateGroup(), 0);
    EXPECT_EQ(dialog->sampleField()->text(), today("yyyy.MM.dd"));
}

// Cancel stores and posts nothing. OK stores the four settings, then
// posts the date format's notification before the resolution's.
TEST_F(PreferencesDialogTest, OnlyOkStoresTheSettingsThenPostsDateFormatBeforeResolution)
{
    const QString path = BLPlistCtrl::sharedCtrl()->filePath();
    const QByteArray before = cwtest::readFile(path);
    runAsUser([&] {
        choose(dialog->orderDateGroup(), 0);
        dialog->pauseCharPopUp()->setCurrentText(".");
        choose(dialog->orderResolutionGroup(), 0);
        dialog->verifyCopyBox()->click();
        button(QDialogButtonBox::Cancel)->click();
    });
    cwtest::settle(); // notifications are posted when the program is next idle
    EXPECT_TRUE(posted().isEmpty());
    EXPECT_EQ(cwtest::readFile(path), before);
    EXPECT_FALSE(BLPlistCtrl::sharedCtrl()->getVerifyCopy());

    // Date order rows are year-month-day, day-month-year, month-day-year;
    // the setting numbers them 0, 2, 1.
    const int storedForRow[] = {0, 2, 1};
    for (int row = 0; row < 3; ++row) {
        m_posted.notes.clear();
        bool shownVerify = true;
        runAsUser([&] {
            choose(dialog->orderDateGroup(), row);
            dialog->pauseCharPopUp()->setCurrentText(".");
            choose(dialog->orderResolutionGroup(), 1);
            shownVerify = dialog->verifyCopyBox()->isChecked();
            dialog->verifyCopyBox()->click(); // the stored choice, turned over
            button(QDialogButtonBox::Ok)->click();
        });
        EXPECT_EQ(shownVerify, row % 2 == 1) << row; // stored off, then on, then off again
        EXPECT_TRUE(posted().isEmpty());
        cwtest::settle();
        EXPECT_EQ(posted(), QStringList({SC::SCDateFormatDidChangeNotification,
                                         SC::SCResolutionDidChangeNotification}));

        const auto onDisk = BLPlistCtrl::readPlistFile(path);
        ASSERT_TRUE(onDisk.has_value());
        EXPECT_EQ(onDisk->value("DATE_FORMAT").toInt(), storedForRow[row]) << row;
        EXPECT_EQ(onDisk->value("DATE_PAUSE_CHAR").toString(), ".");
        EXPECT_EQ(onDisk->value("LOW_RESOLUTION").toInt(), 1);
        EXPECT_EQ(onDisk->value("VERIFY_COPY").toInt(), row % 2 == 0 ? 1 : 0);
    }
}
