#include "core/app/BLMainWindowCtrl.h"
#include "core/app/BLPreferencesCtrl.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLPlistCtrl.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"
#include "ui/app/PreferencesDialog.h"
#include "ui/app/SCMainWindow.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QSplitter>

#include <gtest/gtest.h>

#include <memory>

namespace {

// Every text the localiser would look up in the windows built here.
void collectTitles(QWidget* widget, QStringList& titles)
{
    if (widget->isWindow())
        titles << widget->windowTitle();
    if (auto* button = qobject_cast<QAbstractButton*>(widget))
        titles << button->text();
    if (auto* label = qobject_cast<QLabel*>(widget))
        titles << label->text();
    if (auto* group = qobject_cast<QGroupBox*>(widget))
        titles << group->title();
    for (QAction* action : widget->actions()) {
        titles << action->text().section('\t', 0, 0); // without the keys shown beside it
        if (action->menu())
            collectTitles(action->menu(), titles);
    }
    for (QObject* child : widget->children())
        if (auto* childWidget = qobject_cast<QWidget*>(child))
            collectTitles(childWidget, titles);
}

} // namespace

using namespace cwtest;

class MainWindowTest : public HomeTest
{
protected:
    void start()
    {
        window = std::make_unique<SCMainWindow>();
        ctrl = std::make_unique<BLMainWindowCtrl>(*window);
        window->setController(ctrl.get());
        ctrl->awakeFromNib();
        window->show();
        activate();
    }
    void activate()
    {
        window->activateWindow();
        ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == window.get(); }));
    }
    void TearDown() override
    {
        window.reset();
        ctrl.reset();
        HomeTest::TearDown();
    }
    static QRect screen() { return QGuiApplication::primaryScreen()->availableGeometry(); }
    int upperSide() const { return window->splitView()->sizes().value(0); }

    std::unique_ptr<SCMainWindow> window;
    std::unique_ptr<BLMainWindowCtrl> ctrl;
};

// The stored frame is used; Reset Window Size, refused while a modal dialog is
// in front, gives the default frame centred with Main and Sub1 side by side
// above the preview, which has a third of the height.
TEST_F(MainWindowTest, ResetWindowSizeRestoresTheDefaultLayoutUnlessADialogIsInFront)
{
    writeSettings(
        home().configHome(),
        {{"MAIN_WIN_WIDTH", 900.0}, {"MAIN_WIN_HEIGHT", 700.0}, {"MAIN_WIN_X", 10.0}, {"MAIN_WIN_Y", 20.0}});
    start();
    ASSERT_EQ(window->size(), QSize(900, 700));
    QDialog dialog(window.get());
    dialog.open(); // window-modal, in front of the main window
    ASSERT_TRUE(waitFor([&] { return QApplication::activeWindow() == &dialog; }));
    window->validateMenuItems();
    EXPECT_FALSE(window->resetWindowSizeAction()->isEnabled());
    dialog.close();
    activate();
    window->validateMenuItems();
    ASSERT_TRUE(window->resetWindowSizeAction()->isEnabled());
    window->resetWindowSizeAction()->trigger();
    settle();

    EXPECT_EQ(window->size(), QSize(1024, 768));
    // The offscreen platform shifts a visible window moved to a negative x by
    // its frame margins, so x is allowed that much.
    EXPECT_NEAR(window->pos().x(), screen().x() + (screen().width() - 1024) / 2, 4);
    EXPECT_EQ(window->pos().y(), screen().y() + (screen().height() - 768) / 2);
    EXPECT_NEAR(upperSide(), 2 * window->splitView()->sizes().value(1), 3);
    const auto at = [&](QWidget* w) { return w->mapTo(window.get(), QPoint(0, 0)); };
    QWidget* main = window->paneContainer(0);
    QWidget* sub1 = window->paneContainer(1);
    QWidget* preview = window->previewContainer();
    ASSERT_TRUE(main && sub1 && preview);
    EXPECT_LT(at(main).x() + main->width(), at(sub1).x());
    EXPECT_EQ(at(main).y(), at(sub1).y());
    EXPECT_LT(at(main).y() + main->height(), at(preview).y());
}

TEST_F(MainWindowTest, EveryTitleOfTheWindowsHasATableEntry)
{
    start();
    PreferencesDialog preferences(window.get());
    QStringList titles;
    collectTitles(window.get(), titles); // menus, housekeeping sheet and the Preferences dialog too
    // Dialog buttons carry the message-box button texts, the preview's audio
    // button the text of its label key.
    const QStringList buttonTexts = {BLCommon::sharedCtrl()->getBtnLabel(1, 0),
                                     BLCommon::sharedCtrl()->getBtnLabel(1, 1),
                                     BLLocalizedString("LOCALIZED_PREVIEW_STEREO")};
    QStringList missing;
    for (const QString& title : titles)
        if (!title.isEmpty() && !BLLocalizedStrings::contains(title) && !buttonTexts.contains(title))
            missing << title;
    EXPECT_TRUE(titles.contains("Preferences") && titles.contains("Checking Folder")) << "dialogs not walked";
    EXPECT_TRUE(missing.isEmpty()) << missing.join(" | ").toStdString();
}
