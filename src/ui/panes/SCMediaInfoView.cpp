#include "ui/panes/SCMediaInfoView.h"

#include "core/app/panes/BLMediaInfoCtrl.h"
#include "core/card/BLTreeViewCtrl.h"
#include "ui/common/LocalizedTitle.h"
#include "ui/export/MPEG2TSConvertDialog.h"
#include "ui/operations/ClipPropertyDialog.h"
#include "ui/operations/ClipTransferDialog.h"
#include "ui/operations/DeleteFolderDialog.h"
#include "ui/operations/FolderCombineDialog.h"
#include "ui/operations/FolderDivisionDialog.h"
#include "ui/operations/FolderNameDialog.h"
#include "ui/operations/MP4ImportDialog.h"
#include "ui/operations/MediaNameChangeDialog.h"
#include "ui/operations/OffloadDialog.h"
#include "ui/panes/SCThumbView.h"
#include "ui/panes/SCTreeView.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QSplitter>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
constexpr int kTreeWidth = 150;
constexpr int kGridMinimumWidth = 180;

struct ToolButtonInfo
{
    int tag;
    const char* title;
    const char* themeIcon;
    QStyle::StandardPixmap fallback;
};

ToolButtonInfo toolButtonInfo(int tag, bool mainPane)
{
    switch (tag) {
    case MENU_ITEM_ID_CHANGE_WORK_FOLDER:
        return {tag, "Change Work Folder...", "folder-open", QStyle::SP_DirOpenIcon};
    case MENU_ITEM_ID_MOVE_UP_FOLDER:
        return {tag, "Up One Folder", "go-up", QStyle::SP_FileDialogToParent};
    case MENU_ITEM_ID_NEW_FOLDER:
        return {tag, "New Folder...", "folder-new", QStyle::SP_FileDialogNewFolder};
    case MENU_ITEM_ID_FOLDER_DIVISION:
        return {tag, "Divide Folder...", "view-split-left-right", QStyle::SP_FileDialogListView};
    case MENU_ITEM_ID_CLIP_SEARCH:
        return {tag, "Search Clips...", "edit-find", QStyle::SP_FileDialogContentsView};
    default: // MENU_ITEM_ID_ALL_COPY, pointing at the other pane
        return {tag, "Copy All Clips to the Other Pane...", mainPane ? "go-next" : "go-previous",
                mainPane ? QStyle::SP_ArrowRight : QStyle::SP_ArrowLeft};
    }
}
} // namespace

const QList<int>& SCMediaInfoView::toolButtonTags()
{
    static const QList<int> tags{MENU_ITEM_ID_CHANGE_WORK_FOLDER, MENU_ITEM_ID_MOVE_UP_FOLDER,
                                 MENU_ITEM_ID_NEW_FOLDER,         MENU_ITEM_ID_FOLDER_DIVISION,
                                 MENU_ITEM_ID_CLIP_SEARCH,        MENU_ITEM_ID_ALL_COPY};
    return tags;
}

SCMediaInfoView::SCMediaInfoView(BLMediaInfoCtrl* ctrl, QWidget* parent)
    : QWidget(parent), m_ctrl(ctrl), m_folderName(new QLabel), m_splitView(new QSplitter(Qt::Horizontal)),
      m_treeView(new SCTreeView(ctrl->treeViewCtrl())), m_thumbView(new SCThumbView(ctrl->thumbViewCtrl())),
      m_folderSize(new QLabel), m_volumeSize(new QLabel), m_folderNameDialog(new FolderNameDialog(this)),
      m_deleteFolderDialog(new DeleteFolderDialog(this)),
      m_clipCopyDialog(new ClipTransferDialog(QStringLiteral("ClipCopy"), this)),
      m_clipMoveDialog(new ClipTransferDialog(QStringLiteral("ClipMove"), this)),
      m_mpeg2tsConvertDialog(new MPEG2TSConvertDialog(this))
{
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    for (int tag : toolButtonTags())
        buttons->addWidget(makeToolButton(tag));
    buttons->addStretch(1);

    QFont bold = m_folderName->font();
    bold.setBold(true);
    m_folderName->setFont(bold);
    m_folderName->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_folderName->setMinimumWidth(1); // a long name must not widen the pane

    m_treeView->setMinimumWidth(80);
    m_thumbView->setMinimumWidth(kGridMinimumWidth);
    m_splitView->addWidget(m_treeView);
    m_splitView->addWidget(m_thumbView);
    m_splitView->setChildrenCollapsible(false);
    // A change of the pane's width goes to the grid; the folder list keeps its width.
    m_splitView->setStretchFactor(0, 0);
    m_splitView->setStretchFactor(1, 1);
    m_splitView->setSizes({kTreeWidth, 1000});

    auto* sizes = new QHBoxLayout;
    sizes->addWidget(m_folderSize);
    sizes->addStretch(1);
    sizes->addWidget(m_volumeSize);
    for (QLabel* label : {m_folderSize, m_volumeSize})
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(3);
    layout->addLayout(buttons);
    layout->addWidget(m_folderName);
    layout->addWidget(m_splitView, 1);
    layout->addLayout(sizes);

    ctrl->setView(this);
    localizedTitleByObject(this);
}

SCMediaInfoView::~SCMediaInfoView()
{
    if (m_ctrl)
        m_ctrl->setView(nullptr);
}

BLMediaInfoCtrl* SCMediaInfoView::ctrl() const
{
    return m_ctrl;
}

QToolButton* SCMediaInfoView::makeToolButton(int tag)
{
    const ToolButtonInfo info = toolButtonInfo(tag, m_ctrl->getMediaInfoType() == BLMediaInfoCtrl::kTypeMain);
    auto* button = new QToolButton;
    button->setText(QString::fromUtf8(info.title));
    button->setToolTip(button->text());
    button->setIcon(
        QIcon::fromTheme(QString::fromLatin1(info.themeIcon), style()->standardIcon(info.fallback)));
    button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    button->setAutoRaise(true);
    button->setEnabled(false); // until the pane says otherwise
    connect(button, &QToolButton::clicked, this, [this, tag] {
        if (m_ctrl)
            m_ctrl->selectMenuItemToTreeView(tag);
    });
    m_toolButtons.insert(tag, button);
    return button;
}

void SCMediaInfoView::setFolderName(const QString& text)
{
    m_folderName->setText(text);
    m_folderName->setToolTip(text);
}

void SCMediaInfoView::setFolderSize(const QString& text)
{
    m_folderSize->setText(text);
}

void SCMediaInfoView::setVolumeSize(const QString& text)
{
    m_volumeSize->setText(text);
}

void SCMediaInfoView::setToolButtonEnabled(int tag, bool enabled)
{
    if (QToolButton* button = m_toolButtons.value(tag))
        button->setEnabled(enabled);
}

void SCMediaInfoView::setDividerLocked(bool locked)
{
    m_splitView->handle(1)->setEnabled(!locked);
}

QString SCMediaInfoView::chooseFolder(const QString& start)
{
    return QFileDialog::getExistingDirectory(this, QString(), start, QFileDialog::ShowDirsOnly);
}

IFolderNameView& SCMediaInfoView::folderNameView()
{
    return *m_folderNameDialog;
}

IDeleteFolderView& SCMediaInfoView::deleteFolderView()
{
    return *m_deleteFolderDialog;
}

IClipTransferView& SCMediaInfoView::clipCopyView()
{
    return *m_clipCopyDialog;
}

IMPEG2TSConvertView* SCMediaInfoView::mpeg2tsConvertView()
{
    return m_mpeg2tsConvertDialog;
}

IClipTransferView& SCMediaInfoView::clipMoveView()
{
    return *m_clipMoveDialog;
}

// The dialogs below are made on first use, one per pane.
template <class Dialog> static Dialog& dialogOf(QWidget* pane, const QString& name)
{
    auto* dialog = static_cast<Dialog*>(pane->findChild<QDialog*>(name, Qt::FindDirectChildrenOnly));
    return dialog ? *dialog : *new Dialog(pane);
}

IFolderDivisionView* SCMediaInfoView::folderDivisionView()
{
    return &dialogOf<FolderDivisionDialog>(this, QStringLiteral("FolderDivision"));
}

IFolderCombineView* SCMediaInfoView::folderCombineView()
{
    return &dialogOf<FolderCombineDialog>(this, QStringLiteral("FolderCombine"));
}

IMediaNameChangeView* SCMediaInfoView::mediaNameChangeView()
{
    return &dialogOf<MediaNameChangeDialog>(this, QStringLiteral("MediaNameChange"));
}

IClipPropertyView* SCMediaInfoView::clipPropertyView()
{
    return &dialogOf<ClipPropertyDialog>(this, QStringLiteral("ClipProperty"));
}

IMP4ImportView* SCMediaInfoView::mp4ImportView()
{
    return &dialogOf<MP4ImportDialog>(this, QStringLiteral("MP4Import"));
}

IOffloadView* SCMediaInfoView::offloadView()
{
    return &dialogOf<OffloadDialog>(this, QStringLiteral("Offload"));
}
