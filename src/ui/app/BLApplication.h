#pragma once

#include <QApplication>

#include <memory>

class BLMainWindowCtrl;
class BLPreferencesCtrl;
class PreferencesDialog;
class SCMainWindow;
class SCMessageBoxPresenter;

// The application object: writes the start and end banners, builds the main
// window and its controller, shows alerts as message boxes, opens the About
// and Preferences dialogs, and ends the program when the main window closes
// (also on SIGTERM and SIGINT, through the same path).
class BLApplication : public QApplication
{
public:
    BLApplication(int& argc, char** argv);
    ~BLApplication() override;

    // Builds the windows, shows the main window and runs the event loop.
    int run();

private:
    void awakeFromNib();
    void applicationDidFinishLaunching();
    void applicationShouldTerminateAfterLastWindowClosed();
    void terminate();
    void applicationWillTerminate();
    void applicationStateChanged(Qt::ApplicationState state);
    void onAbout();
    void onPreferences();

    std::unique_ptr<SCMainWindow> m_mainWindow;
    std::unique_ptr<BLMainWindowCtrl> m_mainWindowCtrl;
    PreferencesDialog* m_preferencesDialog = nullptr; // a child of the main window
    std::unique_ptr<BLPreferencesCtrl> m_preferencesCtrl;
    std::unique_ptr<SCMessageBoxPresenter> m_presenter;
    bool m_hidden = false;
};
