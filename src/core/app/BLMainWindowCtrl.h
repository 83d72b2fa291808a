#pragma once

#include <QRectF>
#include <QSizeF>

#include <memory>

class IMainWindowView;
class BLMediaInfoCtrl;
class BLPreviewCtrl;
class BLCacheImageCtrl;
class DOMPEG2TSConvert;

// Menu tag of "Reset Window Size".
inline constexpr int MENU_ITEM_ID_RESET_WINDOW_SIZE = 44049;

// Controller of the main window: restores and saves the window frame through
// the settings store, applies the size rules for resizing and zooming, keeps
// the housekeeping sheet on screen while housekeeping runs, and shuts down
// when the window closes. The pane, preview, thumbnail-cache and search
// controllers it owns are created here as they become available.
class BLMainWindowCtrl
{
public:
    explicit BLMainWindowCtrl(IMainWindowView& view);
    ~BLMainWindowCtrl();
    BLMainWindowCtrl(const BLMainWindowCtrl&) = delete;
    BLMainWindowCtrl& operator=(const BLMainWindowCtrl&) = delete;

    // Once the window is built: restores the frame and starts observing the
    // housekeeping notifications.
    void awakeFromNib();
    // When launching has finished: initialises the panes and the preview.
    // False when the program cannot go on (the viewer library did not start).
    bool initializeCtrl();
    void finalizeCtrl();

    void readData();
    void writeData();
    void resetWindowSize();
    void setWindowFrame(double width, double height, bool setOrigin, double x, double y);

    // The other pane: Main for Sub1, Sub1 for Main, nothing for anything else.
    BLMediaInfoCtrl* getAnotherMediaInfoCtrl(const BLMediaInfoCtrl* mediaInfoCtrl) const;
    // The Main (type 0) or Sub1 (type 1) pane; none before awakeFromNib.
    BLMediaInfoCtrl* getMediaInfoCtrl(int infoType) const;
    // The pane whose folder list (treeHasFocus) or grid has the keyboard
    // focus; the menus act on it. Null when neither pane has it.
    void setFocusMediaInfoCtrl(BLMediaInfoCtrl* mediaInfoCtrl, bool treeHasFocus);
    // The preview controller (none when the window has no preview view).
    BLPreviewCtrl* getPreviewCtrl() const { return m_previewCtrl.get(); }
    // The MPEG-2 TS export parameters (the conversion library and its callback).
    DOMPEG2TSConvert& getDOMPEG2TSConvert() const { return *m_mpeg; }

    // Whether the controller handles the menu tag (its own, or a command of
    // the pane with the focus); *isEnable tells whether the item is available now.
    bool isSupportMenuItem(int tag, bool* isEnable) const;
    void selectMenuItem(int tag);

    // Window events, reported by the view.
    void windowWillCloseNotification();
    void windowWillMiniaturizeNotification();
    void windowDidDeminiaturizeNotification();
    void applicationWillHideNotification();
    void applicationDidUnhideNotification();
    // The size a user resize may reach: never below the window's minimum.
    QSizeF windowWillResize(const QSizeF& proposedSize) const;
    // Whether a zoom to the given frame may go ahead.
    bool windowShouldZoom(const QRectF& newFrame);
    void windowDidResize();

    bool isZoom() const { return m_isZoom; }

private:
    void showHouseKeepingWindowNotification();
    void closeHouseKeepingWindowNotification();
    void setDividersLocked(bool locked);

    IMainWindowView& m_view;
    std::unique_ptr<BLMediaInfoCtrl> m_mediaInfoCtrl1;
    std::unique_ptr<BLMediaInfoCtrl> m_mediaInfoCtrl2;
    BLMediaInfoCtrl* m_focusMediaInfoCtrl = nullptr;
    bool m_focusOnTree = false;
    std::unique_ptr<BLPreviewCtrl> m_previewCtrl;
    std::unique_ptr<BLCacheImageCtrl> m_cacheImageCtrl;
    bool m_isZoom = false;
    std::unique_ptr<DOMPEG2TSConvert> m_mpeg;
};
