#include "ui/app/BLApplication.h"

#include "core/app/BLMainWindowCtrl.h"
#include "core/app/BLPreferencesCtrl.h"
#include "core/formats/metadata/BLBIMCtrl.h"
#include "core/operations/BLClipboardCtrl.h"
#include "core/services/AppBanners.h"
#include "core/services/AppVersion.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/SCNotificationNames.h"
#include "core/services/TerminationSignals.h"
#include "ui/app/PreferencesDialog.h"
#include "ui/app/RightClickActivationFilter.h"
#include "ui/app/SCMainWindow.h"
#include "ui/common/LocalizedTitle.h"
#include "ui/common/ProgressDialog.h"
#include "ui/common/SCMessageBoxPresenter.h"

#include <QAction>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

BLApplication::BLApplication(int& argc, char** argv) : QApplication(argc, argv)
{
    setApplicationName(QStringLiteral("Clipwright"));
    setApplicationVersion(appVersion());
    // Ties the windows to the installed desktop entry and its icon.
    setDesktopFileName(QStringLiteral("io.github.clipwright.Clipwright"));
    // Closing the main window ends the program through terminate(), after
    // the window's own shut-down.
    setQuitOnLastWindowClosed(false);
    // Installed first, so a stop request during start-up is served once the
    // event loop runs.
    auto* stopSignals = new TerminationSignals(this);
    connect(stopSignals, &TerminationSignals::received, this, [this] {
        if (m_mainWindow)
            m_mainWindow->close();
    });
    installEventFilter(new RightClickActivationFilter(this));
    connect(this, &QCoreApplication::aboutToQuit, this, &BLApplication::applicationWillTerminate);
    connect(this, &QGuiApplication::applicationStateChanged, this, &BLApplication::applicationStateChanged);
}

BLApplication::~BLApplication()
{
    BLCommon::setMessagePresenter(nullptr);
    BLProgressCtrl::releaseCtrl();
    BLBIMCtrl::releaseCtrl();
    m_preferencesCtrl.reset();
    m_mainWindowCtrl.reset();
    m_mainWindow.reset();
    BLClipboardCtrl::releaseCtrl();
    BLCommon::releaseCtrl();
    BLLogCtrl::releaseCtrl();
    BLPlistCtrl::releaseCtrl();
}

int BLApplication::run()
{
    awakeFromNib();
    m_mainWindow->show();
    QTimer::singleShot(0, this, &BLApplication::applicationDidFinishLaunching);
    return exec();
}

void BLApplication::awakeFromNib()
{
    // The first log line creates the log, which reads the settings first.
    AppBanners::logStart();

    m_mainWindow = std::make_unique<SCMainWindow>();
    m_mainWindowCtrl = std::make_unique<BLMainWindowCtrl>(*m_mainWindow);
    m_mainWindow->setController(m_mainWindowCtrl.get());
    m_mainWindowCtrl->awakeFromNib();
    m_mainWindow->installPaneViews();
    connect(m_mainWindow.get(), &SCMainWindow::windowClosed, this,
            &BLApplication::applicationShouldTerminateAfterLastWindowClosed);
    connect(m_mainWindow->quitAction(), &QAction::triggered, m_mainWindow.get(), &QWidget::close);
    connect(m_mainWindow->aboutAction(), &QAction::triggered, this, &BLApplication::onAbout);
    connect(m_mainWindow->preferencesAction(), &QAction::triggered, this, &BLApplication::onPreferences);

    m_preferencesDialog = new PreferencesDialog(m_mainWindow.get());
    m_preferencesCtrl = std::make_unique<BLPreferencesCtrl>(*m_preferencesDialog);
    m_preferencesDialog->setController(m_preferencesCtrl.get());

    m_presenter = std::make_unique<SCMessageBoxPresenter>(m_mainWindow.get());
    BLCommon::setMessagePresenter(m_presenter.get());
    // Long operations show their progress window-modal on the main window.
    BLProgressCtrl::sharedCtrl()->setView(new ProgressDialog(m_mainWindow.get()));
}

void BLApplication::applicationDidFinishLaunching()
{
    // Without its viewer the program cannot go on: it ends as when its window closes.
    if (!m_mainWindowCtrl->initializeCtrl())
        m_mainWindow->close();
}

void BLApplication::applicationShouldTerminateAfterLastWindowClosed()
{
    BLLogCtrl::debug(
        0, QStringLiteral("[BLApplication applicationShouldTerminateAfterLastWindowClosed] return:YES"));
    terminate();
}

void BLApplication::terminate()
{
    BLLogCtrl::debug(0, QStringLiteral("[BLApplication applicationShouldTerminate] return:NSTerminateNow"));
    quit();
}

void BLApplication::applicationWillTerminate()
{
    BLLogCtrl::debug(0, QStringLiteral("[BLApplication applicationWillTerminate]"));
    AppBanners::logEnd();
}

void BLApplication::applicationStateChanged(Qt::ApplicationState state)
{
    if (!m_mainWindowCtrl)
        return;
    if (state == Qt::ApplicationHidden) {
        m_hidden = true;
        m_mainWindowCtrl->applicationWillHideNotification();
    } else if (m_hidden) {
        m_hidden = false;
        m_mainWindowCtrl->applicationDidUnhideNotification();
    }
}

void BLApplication::onAbout()
{
    QMessageBox box(m_mainWindow.get());
    box.setWindowTitle(QStringLiteral("About ORX Clipwright"));
    box.setText(QStringLiteral("ORX Clipwright"));
    box.setInformativeText(BLLocalizedString(QStringLiteral(
                               "Manages the clips of professional camcorder cards: preview, copy, move and "
                               "delete takes, search clips, divide and combine folders, import MP4 files, "
                               "export MPEG-2 transport streams and offload cards with verified copies.")) +
                           QStringLiteral("\n\n") +
                           BLLocalizedString(QStringLiteral("Version %1")).arg(applicationVersion()));
    box.setStandardButtons(QMessageBox::Ok);
    box.button(QMessageBox::Ok)->setText(BLLocalizedString(QStringLiteral("BTN_STYLE_OK")));
    localizedTitleByObject(&box);
    box.exec();
}

void BLApplication::onPreferences()
{
    // A running preview stops before the settings it uses can change.
    BLCommon::sharedCtrl()->sendNotificationNow(this, SC::SCMovieStopNotification);
    m_preferencesCtrl->showModal();
}
