#include "core/app/BLMainWindowCtrl.h"

#include "core/app/AppBanners.h"
#include "core/app/BLLogCtrl.h"
#include "core/app/BLPlistCtrl.h"
#include "core/app/IMainWindowView.h"
#include "core/common/SCNotificationCenter.h"
#include "core/common/SCNotificationNames.h"
#include "core/preview/BLPreviewCtrl.h"
#include "core/preview/BLCacheImageCtrl.h"

#include <algorithm>

BLMainWindowCtrl::BLMainWindowCtrl(IMainWindowView& view) : m_view(view) {}

BLMainWindowCtrl::~BLMainWindowCtrl()
{
    SCNotificationCenter::defaultCenter()->removeObserver(this);
}

void BLMainWindowCtrl::awakeFromNib()
{
    // Made after the panes and before the thumbnail cache, which uses it.
    if (IPreviewView* previewView = m_view.previewView())
        m_previewCtrl = std::make_unique<BLPreviewCtrl>(*previewView);
    m_cacheImageCtrl = std::make_unique<BLCacheImageCtrl>();
    readData();
    SCNotificationCenter* center = SCNotificationCenter::defaultCenter();
    center->addObserver(this, SC::SCShowHouseKeepingWindowNotification,
                        [this](const SCNotification&) { showHouseKeepingWindowNotification(); });
    center->addObserver(this, SC::SCCloseHouseKeepingWindowNotification,
                        [this](const SCNotification&) { closeHouseKeepingWindowNotification(); });
    m_isZoom = false;
}

bool BLMainWindowCtrl::initializeCtrl()
{
    // The panes initialise here, before the preview, once they exist.
    return !m_previewCtrl || m_previewCtrl->initializeCtrl();
}

void BLMainWindowCtrl::finalizeCtrl()
{
    // The panes are finalised here, before the preview, and the export
    // parameters after it, once they exist.
    if (m_previewCtrl)
        m_previewCtrl->finalizeCtrl();
}

void BLMainWindowCtrl::readData()
{
    const BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    double x = 0;
    double y = 0;
    const bool hasX = plist->getMainWindowX(&x);
    const bool hasY = plist->getMainWindowY(&y);
    setWindowFrame(plist->getMainWindowWidth(), plist->getMainWindowHeight(), hasX && hasY, x, y);
}

void BLMainWindowCtrl::writeData()
{
    const QRectF frame = m_view.windowFrame();
    BLPlistCtrl* plist = BLPlistCtrl::sharedCtrl();
    plist->setMainWindowWidth(frame.width());
    plist->setMainWindowHeight(frame.height());
    plist->setMainWindowX(frame.x());
    plist->setMainWindowY(frame.y());
}

void BLMainWindowCtrl::resetWindowSize()
{
    m_view.setSplitUpperSideToMinimum();
    setWindowFrame(BLPlistCtrl::getDefaultMainWindowWidth(), BLPlistCtrl::getDefaultMainWindowHeight(), false,
                   0, 0);
}

void BLMainWindowCtrl::setWindowFrame(double width, double height, bool setOrigin, double x, double y)
{
    QRectF frame(x, y, width, height);
    if (!setOrigin) {
        const QRectF screen = m_view.screenFrame();
        frame.moveLeft(screen.x() + static_cast<int>((screen.width() - width) * 0.5));
        frame.moveTop(screen.y() + static_cast<int>((screen.height() - height) * 0.5));
    }
    // Locked dividers keep the pane area's height while the window changes.
    setDividersLocked(true);
    m_view.setWindowFrame(frame);
    setDividersLocked(false);
}

BLMediaInfoCtrl* BLMainWindowCtrl::getAnotherMediaInfoCtrl(const BLMediaInfoCtrl* mediaInfoCtrl) const
{
    if (!mediaInfoCtrl)
        return nullptr;
    if (mediaInfoCtrl == m_mediaInfoCtrl1)
        return m_mediaInfoCtrl2;
    if (mediaInfoCtrl == m_mediaInfoCtrl2)
        return m_mediaInfoCtrl1;
    return nullptr;
}

bool BLMainWindowCtrl::isSupportMenuItem(int tag, bool* isEnable) const
{
    *isEnable = false;
    if (tag == MENU_ITEM_ID_RESET_WINDOW_SIZE) {
        *isEnable = m_view.isWindowVisible() && m_view.isKeyWindow();
        return true;
    }
    return m_previewCtrl && m_previewCtrl->isSupportMenuItem(tag, isEnable);
}

void BLMainWindowCtrl::selectMenuItem(int tag)
{
    if (tag == MENU_ITEM_ID_RESET_WINDOW_SIZE) {
        BLLogCtrl::debug(
            631,
            QStringLiteral("[BLMainWindowCtrl selectMenuItem] menuItemID:MENU_ITEM_ID_RESET_WINDOW_SIZE"));
        resetWindowSize();
    }
    if (m_previewCtrl)
        m_previewCtrl->selectMenuItem(tag);
}

void BLMainWindowCtrl::windowWillCloseNotification()
{
    BLLogCtrl::debug(0, QStringLiteral("[BLMainWindowCtrl windowWillCloseNotification]"));
    writeData();
    if (m_cacheImageCtrl) {
        m_cacheImageCtrl->deleteCacheImageByCreationData();
        m_cacheImageCtrl->setExitThread();
    }
    finalizeCtrl();
    AppBanners::logEnd();
}

void BLMainWindowCtrl::windowWillMiniaturizeNotification()
{
    BLLogCtrl::debug(0, QStringLiteral("[BLMainWindowCtrl windowWillMiniaturizeNotification]"));
    if (m_previewCtrl)
        m_previewCtrl->hideOpenGLView();
}

void BLMainWindowCtrl::windowDidDeminiaturizeNotification()
{
    BLLogCtrl::debug(0, QStringLiteral("[BLMainWindowCtrl windowDidDeminiaturizeNotification]"));
    if (m_previewCtrl)
        m_previewCtrl->showOpenGLView();
}

void BLMainWindowCtrl::applicationWillHideNotification()
{
    BLLogCtrl::debug(0, QStringLiteral("[BLMainWindowCtrl applicationWillHideNotification]"));
    if (m_previewCtrl)
        m_previewCtrl->hideOpenGLView();
}

void BLMainWindowCtrl::applicationDidUnhideNotification()
{
    BLLogCtrl::debug(0, QStringLiteral("[BLMainWindowCtrl applicationDidUnhideNotification]"));
    if (m_previewCtrl)
        m_previewCtrl->showOpenGLView();
}

QSizeF BLMainWindowCtrl::windowWillResize(const QSizeF& proposedSize) const
{
    const QSizeF minimum = m_view.minimumWindowSize();
    return {std::max(proposedSize.width(), minimum.width()),
            std::max(proposedSize.height(), minimum.height())};
}

bool BLMainWindowCtrl::windowShouldZoom(const QRectF& newFrame)
{
    const QSizeF minimum = m_view.minimumWindowSize();
    if (newFrame.width() < minimum.width() || newFrame.height() < minimum.height())
        return false;
    m_isZoom = true;
    m_view.setSplitUpperSideToMinimum();
    setDividersLocked(true);
    return true;
}

void BLMainWindowCtrl::windowDidResize()
{
    if (!m_isZoom)
        return;
    m_isZoom = false;
    setDividersLocked(false);
}

void BLMainWindowCtrl::showHouseKeepingWindowNotification()
{
    if (!m_view.isHouseKeepingSheetVisible())
        m_view.showHouseKeepingSheet();
}

void BLMainWindowCtrl::closeHouseKeepingWindowNotification()
{
    if (m_view.isHouseKeepingSheetVisible())
        m_view.closeHouseKeepingSheet();
}

void BLMainWindowCtrl::setDividersLocked(bool locked)
{
    // The panes' own dividers join the split view's here once the panes exist.
    m_view.setDividersLocked(locked);
}
