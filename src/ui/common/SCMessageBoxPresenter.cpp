#include "ui/common/SCMessageBoxPresenter.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

SCMessageBoxPresenter::SCMessageBoxPresenter(QWidget* parent) : m_parent(parent) {}

int SCMessageBoxPresenter::showAlert(const SCAlert& alert)
{
    QMessageBox box(m_parent);
    box.setIcon(QMessageBox::Information);
    box.setWindowModality(Qt::ApplicationModal);
    box.setWindowTitle(QApplication::applicationDisplayName());
    box.setText(alert.message);
    box.setInformativeText(alert.informative);
    // One role for every button keeps them in the given order on every
    // platform layout (accept and reject roles would be reordered).
    QList<QPushButton*> buttons;
    for (const QString& title : alert.buttons)
        buttons << box.addButton(title, QMessageBox::ActionRole);
    if (buttons.isEmpty())
        return kFirstButton;
    box.setDefaultButton(buttons.first());
    box.setEscapeButton(buttons.last());
    box.exec();
    return buttons.indexOf(static_cast<QPushButton*>(box.clickedButton())) == 1 ? kSecondButton
                                                                                : kFirstButton;
}
