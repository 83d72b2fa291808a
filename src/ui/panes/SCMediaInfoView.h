#pragma once

#include "core/app/panes/IMediaInfoView.h"

#include <QMap>
#include <QPointer>
#include <QWidget>

class BLMediaInfoCtrl;
class ClipTransferDialog;
class MPEG2TSConvertDialog;
class DeleteFolderDialog;
class FolderNameDialog;
class QLabel;
class QSplitter;
class QToolButton;
class SCThumbView;
class SCTreeView;

// One media pane: a row of tool buttons, the selected folder's name, the
// folder list and the thumbnail grid side by side in a splitter, and the
// folder-size and volume-size texts. Binds itself to its pane controller as
// its view; the tool buttons run the folder list's commands.
class SCMediaInfoView : public QWidget, public IMediaInfoView
{
    Q_OBJECT
public:
    // The commands of the tool buttons, in their order.
    static const QList<int>& toolButtonTags();

    explicit SCMediaInfoView(BLMediaInfoCtrl* ctrl, QWidget* parent = nullptr);
    ~SCMediaInfoView() override;

    // Null once the controller has gone.
    BLMediaInfoCtrl* ctrl() const;
    SCTreeView* treeView() const { return m_treeView; }
    SCThumbView* thumbView() const { return m_thumbView; }
    QSplitter* splitView() const { return m_splitView; }
    QToolButton* toolButton(int tag) const { return m_toolButtons.value(tag); }
    QLabel* folderNameField() const { return m_folderName; }
    QLabel* folderSizeField() const { return m_folderSize; }
    QLabel* volumeSizeField() const { return m_volumeSize; }

    // IMediaInfoView
    void setFolderName(const QString& text) override;
    void setFolderSize(const QString& text) override;
    void setVolumeSize(const QString& text) override;
    void setToolButtonEnabled(int tag, bool enabled) override;
    void setDividerLocked(bool locked) override;
    QString chooseFolder(const QString& start) override;
    IFolderNameView& folderNameView() override;
    IDeleteFolderView& deleteFolderView() override;
    IClipTransferView& clipCopyView() override;
    IMPEG2TSConvertView* mpeg2tsConvertView() override;
    IClipTransferView& clipMoveView() override;
    IClipPropertyView* clipPropertyView() override;
    IFolderDivisionView* folderDivisionView() override;
    IOffloadView* offloadView() override;
    IFolderCombineView* folderCombineView() override;
    IMediaNameChangeView* mediaNameChangeView() override;
    IMP4ImportView* mp4ImportView() override;

private:
    QToolButton* makeToolButton(int tag);

    QPointer<BLMediaInfoCtrl> m_ctrl;
    QMap<int, QToolButton*> m_toolButtons;
    QLabel* m_folderName;
    QSplitter* m_splitView;
    SCTreeView* m_treeView;
    SCThumbView* m_thumbView;
    QLabel* m_folderSize;
    QLabel* m_volumeSize;
    FolderNameDialog* m_folderNameDialog;
    DeleteFolderDialog* m_deleteFolderDialog;
    ClipTransferDialog* m_clipCopyDialog;
    ClipTransferDialog* m_clipMoveDialog;
    MPEG2TSConvertDialog* m_mpeg2tsConvertDialog;
};
