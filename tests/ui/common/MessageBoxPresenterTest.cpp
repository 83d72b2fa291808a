#include "core/services/BLCommon.h"
#include "core/services/BLLocalizedStrings.h"
#include "support/QtPrinters.h"
#include "ui/common/SCMessageBoxPresenter.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace {

struct Shown
{
    QString text;
    QString informative;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttonsLeftToRight;
    QString defaultButton;
};

// Calls show(), which opens a modal message box; once the box is on screen,
// records what it shows and lets the user's action press a button.
int answerBox(const std::function<int()>& show, const std::function<void(QMessageBox*)>& action, Shown* shown)
{
    auto poll = std::make_shared<std::function<void()>>();
    *poll = [=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible()) {
            QTimer::singleShot(10, [poll] { (*poll)(); });
            return;
        }
        shown->text = box->text();
        shown->informative = box->informativeText();
        shown->icon = box->icon();
        QList<QAbstractButton*> buttons = box->buttons();
        std::sort(buttons.begin(), buttons.end(), [box](QAbstractButton* a, QAbstractButton* b) {
            return a->mapTo(box, QPoint()).x() < b->mapTo(box, QPoint()).x();
        });
        shown->buttonsLeftToRight.clear();
        for (QAbstractButton* b : buttons)
            shown->buttonsLeftToRight << b->text();
        shown->defaultButton = box->defaultButton() ? box->defaultButton()->text() : QString();
        action(box);
    };
    QTimer::singleShot(0, [poll] { (*poll)(); });
    const int result = show();
    *poll = nullptr; // breaks the lambda's reference to itself
    return result;
}

std::function<void(QMessageBox*)> click(const QString& title)
{
    return [title](QMessageBox* box) {
        for (QAbstractButton* b : box->buttons())
            if (b->text() == title)
                b->click();
    };
}

void pressEscape(QMessageBox* box)
{
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(box, &escape);
}

} // namespace

// Buttons appear in the given order and answer by position; the program's
// message boxes show the table's texts.
TEST(MessageBoxPresenterTest, ButtonsAnswerByPositionAndTheProgramsBoxesShowTheTableTexts)
{
    SCMessageBoxPresenter presenter;
    const SCAlert question{"K", "I", "Delete the clips?", "They cannot be restored.", {"Yes", "No"}};
    const auto ask = [&] { return presenter.showAlert(question); };
    Shown shown;

    EXPECT_EQ(answerBox(ask, click("No"), &shown), IMessagePresenter::kSecondButton);
    EXPECT_EQ(shown.text, "Delete the clips?");
    EXPECT_EQ(shown.informative, "They cannot be restored.");
    EXPECT_EQ(shown.icon, QMessageBox::Information);
    EXPECT_EQ(shown.buttonsLeftToRight, QStringList({"Yes", "No"}));
    EXPECT_EQ(shown.defaultButton, "Yes");

    EXPECT_EQ(answerBox(ask, click("Yes"), &shown), IMessagePresenter::kFirstButton);
    // Escape answers the last button: "No" of a question, the only "OK" of a notice.
    EXPECT_EQ(answerBox(ask, pressEscape, &shown), IMessagePresenter::kSecondButton);
    const SCAlert notice{"K", "", "Done.", "", {"OK"}};
    EXPECT_EQ(answerBox([&] { return presenter.showAlert(notice); }, pressEscape, &shown),
              IMessagePresenter::kFirstButton);
    EXPECT_EQ(shown.buttonsLeftToRight, QStringList({"OK"}));

    BLCommon::setMessagePresenter(&presenter);
    const int answer =
        answerBox([] { return BLCommon::sharedCtrl()->messageBox("MSG_632_3100", "MSG_632_3101", 0, 1); },
                  click("Cancel"), &shown);
    BLCommon::setMessagePresenter(nullptr);
    EXPECT_EQ(answer, IMessagePresenter::kSecondButton);
    EXPECT_EQ(shown.text, BLLocalizedString("MSG_632_3100"));
    EXPECT_EQ(shown.informative, BLLocalizedString("MSG_632_3101"));
    EXPECT_NE(shown.text, "MSG_632_3100");
    EXPECT_EQ(shown.buttonsLeftToRight, QStringList({"OK", "Cancel"}));
}
