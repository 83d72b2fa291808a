#include "ui/common/LocalizedTitle.h"
#include "support/QtPrinters.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QStandardItemModel>
#include <QTabWidget>
#include <QTableWidget>
#include <QTreeView>
#include <QVBoxLayout>

#include <gtest/gtest.h>

// Keys of the real table with their texts: "BTN_STYLE_OK" is "OK",
// "LOCALIZED_COPY_TITLE" is "Copy Clips", and so on. Window titles, buttons,
// labels, group boxes and menus are checked on the real windows by the main
// window's test; here the other kinds of titles and what must stay.
TEST(LocalizedTitleTest, ReplacesTitlesThatHaveADifferentTextAndWalksTheWholeTree)
{
    QDialog dialog;
    auto* layout = new QVBoxLayout(&dialog);
    auto* dots = new QCheckBox("...");
    auto* unknown = new QLabel("no entry for this");
    auto* group = new QGroupBox;
    auto* nested = new QLabel("LOCALIZED_FOLDER_MESSAGE", group); // a grandchild
    auto* combo = new QComboBox;
    combo->addItems({"LOCALIZED_TYPE_KB", "/"});
    auto* edit = new QLineEdit;
    edit->setText("BTN_STYLE_NO"); // what the user typed stays
    edit->setPlaceholderText("LOCALIZED_FOLDER_MESSAGE");
    auto* tabs = new QTabWidget;
    tabs->addTab(new QWidget, "LOCALIZED_FOLDER_CHANGE_TITLE");
    auto* table = new QTableWidget(1, 2);
    table->setHorizontalHeaderLabels({"LOCALIZED_TAKEDATA_TOOLTIP_SIZE", "x"});
    auto* tree = new QTreeView;
    QStandardItemModel model(0, 1);
    model.setHorizontalHeaderLabels({"LOCALIZED_MPEG2TSCONVERT_TO_PATH"});
    tree->setModel(&model);
    for (QWidget* w : std::initializer_list<QWidget*>{dots, unknown, group, combo, edit, tabs, table, tree})
        layout->addWidget(w);

    localizedTitleByObject(&dialog);

    EXPECT_EQ(dots->text(), "...");
    EXPECT_EQ(unknown->text(), "no entry for this");
    EXPECT_EQ(nested->text(), "Enter the folder name:");
    EXPECT_EQ(combo->itemText(0) + combo->itemText(1), "KB/");
    EXPECT_EQ(edit->text(), "BTN_STYLE_NO");
    EXPECT_EQ(edit->placeholderText(), "Enter the folder name:");
    EXPECT_EQ(tabs->tabText(0), "Rename Folder");
    EXPECT_EQ(table->horizontalHeaderItem(0)->text() + table->horizontalHeaderItem(1)->text(), "Size: x");
    EXPECT_EQ(model.headerData(0, Qt::Horizontal).toString(), "Export to folder:");

    // A lone action can be localised as well.
    QAction action("BTN_STYLE_CANCEL");
    localizedTitleByObject(&action);
    EXPECT_EQ(action.text(), "Cancel");
}
