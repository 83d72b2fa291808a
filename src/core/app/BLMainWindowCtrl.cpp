#include "core/app/BLMainWindowCtrl.h"

#include "core/app/IMainWindowView.h"
#include "core/app/panes/BLMediaInfoCtrl.h"
#include "core/app/preview/BLCacheImageCtrl.h"
#include "core/app/preview/BLPreviewCtrl.h"
#include "core/operations/export/DOMPEG2TSConvert.h"
#include "core/operations/search/BLClipSearchCtrl.h"
#include "core/services/AppBanners.h"
#include "core/services/BLCommon.h"
#include "core/services/BLLogCtrl.h"
#include "core/services/BLPlistCtrl.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"

#include <algorithm>

BLMainWindowCtrl::BLMainWindowCtrl(IMainWindowView& view)
    : m_view(view), m_mpeg(std::make_unique<DOMPEG2TSConvert>())
{
}

BLMainWindowCtrl::~BLMainWindowCtrl()
{
    SCNotificationCenter::defaultCenter()->removeObserver(this);
}

void BLMainWindowCtrl::awakeFromNib()
{
    m_mediaInfoCtrl1 = std::make_unique<BLMediaInfoCtrl>(BLMediaInfoCtrl::kTypeMain, this);
    m_mediaInfoCtrl2 = std::make_unique<BLMediaInfoCtrl>(BLMediaInfoCtrl::kTypeSub1, this);
    // Made after the panes and before the thumbnail cache, which uses it.
    if (IPreviewView* previewView = m_view.previewView())
        m_previewCtrl = std::make_unique<BLPreviewCtrl>(*previewView);
    m_cacheImageCtrl = std::make_unique<BLCacheImageCtrl>();
    if (IClipSearchView* searchView = m_view.clipSearchView())
        m_clipSearchCtrl = std::make_unique<BLClipSearchCtrl>(
            searchView, QList<IOperationPane*>{m_mediaInfoCtrl1.get(), m_mediaInfoCtrl2.get()});
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
    // Both panes restore first, so one message covers both; a pane that lost
    // its folder shows the volume list and the program goes on.
    const bool lost1 = m_mediaInfoCtrl1 && m_mediaInfoCtrl1->initializeCtrl();
    const bool lost2 = m_mediaInfoCtrl2 && m_mediaInfoCtrl2->initializeCtrl();
    if (lost1 || lost2)
        BLCommon::sharedCtrl()->messageBox(QStringLiteral("MSG_632_3169"), QString(), 0, 0);
    return !m_previewCtrl || m_previewCtrl->initializeCtrl();
}

void BLMainWindowCtrl::finalizeCtrl()
{
    // The panes first, then the preview, then the export parameters.
    if (m_mediaInfoCtrl1) {
        m_mediaInfoCtrl1->finalizeCtrl();
        m_mediaInfoCtrl2->finalizeCtrl();
    }
    if (m_previewCtrl)
        m_previewCtrl->finalizeCtrl();
    m_mpeg->finalizeDO();
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
    setWindowFrame(BLPlistCtrl::getDefaultMainWindowWidth(), BLPlistCtrl::getDefaultMainWindowHeight(), false,
                   0, 0);
    m_view.setSplitToDefault();
}

void BLMainWindowCtrl::setWindowFrame(double width, double height, bool setOrigin, double x, double y)
{
    QRectF frame(x, y, width, height);
    if (!setOrigin) {
        const QRectF screen = m_view.screenFrame();
        frame.moveLeft(screen.x() + static_cast<int>((screen.width() - width) * 0.5));
        frame.moveTop(screen.y() + static_cast<int>((screen.height() - height) * 0.5));
    }
    // Locked dividers keep the preview's height while the window changes.
    setDividersLocked(true);
    m_view.setWindowFrame(frame);
    setDividersLocked(false);
}

BLMediaInfoCtrl* BLMainWindowCtrl::getAnotherMediaInfoCtrl(const BLMediaInfoCtrl* mediaInfoCtrl) const
{
    if (!mediaInfoCtrl)
        return nullptr;
    if (mediaInfoCtrl == m_mediaInfoCtrl1.get())
        return m_mediaInfoCtrl2.get();
    if (mediaInfoCtrl == m_mediaInfoCtrl2.get())
        return m_mediaInfoCtrl1.get();
    return nullptr;
}

BLMediaInfoCtrl* BLMainWindowCtrl::getMediaInfoCtrl(int infoType) const
{
    if (infoType == BLMediaInfoCtrl::kTypeMain)
        return m_mediaInfoCtrl1.get();
    if (infoType == BLMediaInfoCtrl::kTypeSub1)
        return m_mediaInfoCtrl2.get();
    return nullptr;
}

void BLMainWindowCtrl::setFocusMediaInfoCtrl(BLMediaInfoCtrl* mediaInfoCtrl, bool treeHasFocus)
{
    m_focusMediaInfoCtrl = mediaInfoCtrl;
    m_focusOnTree = treeHasFocus;
}

bool BLMainWindowCtrl::isSupportMenuItem(int tag, bool* isEnable) const
{
    *isEnable = false;
    if (tag == MENU_ITEM_ID_RESET_WINDOW_SIZE) {
        *isEnable = m_view.isWindowVisible() && m_view.isKeyWindow();
        return true;
    }
    if (m_focusMediaInfoCtrl) {
        const bool supported =
            m_focusOnTree ? m_focusMediaInfoCtrl->isSupportMenuItemToTreeView(tag, isEnable, nullptr)
                          : m_focusMediaInfoCtrl->isSupportMenuItemToThumbView(tag, isEnable, nullptr);
        if (supported)
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
        return;
    }
    bool isEnable = false;
    if (m_previewCtrl && m_previewCtrl->isSupportMenuItem(tag, &isEnable))
        m_previewCtrl->selectMenuItem(tag);
    else if (m_focusMediaInfoCtrl && m_focusOnTree)
        m_focusMediaInfoCtrl->selectMenuItemToTreeView(tag);
    else if (m_focusMediaInfoCtrl)
        m_focusMediaInfoCtrl->selectMenuItemToThumbView(tag);
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
    // The panes get the room a zoom gains, the preview keeps its height.
    m_isZoom = true;
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
    m_view.setDividersLocked(locked);
    if (m_mediaInfoCtrl1) {
        m_mediaInfoCtrl1->setDividerLocked(locked);
        m_mediaInfoCtrl2->setDividerLocked(locked);
    }
}
