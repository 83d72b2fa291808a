#include "ui/app/HouseKeepingSheet.h"

#include <QCloseEvent>
#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>

HouseKeepingSheet::HouseKeepingSheet(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint),
      m_hkProgress(new QProgressBar(this))
{
    setWindowTitle(QStringLiteral("Checking Folder"));
    setWindowModality(Qt::WindowModal);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        new QLabel(QStringLiteral("Checking the folder and repairing its index files. Please wait."), this));
    // A range of 0..0 makes the bar busy; it keeps moving for the sheet's lifetime.
    m_hkProgress->setRange(0, 0);
    m_hkProgress->setTextVisible(false);
    layout->addWidget(m_hkProgress);
    setMinimumWidth(360);
}

void HouseKeepingSheet::closeEvent(QCloseEvent* event)
{
    // A close from the window system is refused; hide() still works.
    if (event->spontaneous())
        event->ignore();
}
