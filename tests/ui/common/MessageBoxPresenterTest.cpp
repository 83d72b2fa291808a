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

// What a message box showed: its texts, then its buttons left to right, the
// default one marked with "*".
using Shown = QStringList;

// Calls show(), which opens a modal message box; once the box is on screen,
// records what it shows and presses the button titled so (Escape for "").
int answerBox(const std::function<int()>& show, const QString& press, Shown* shown)
{
    auto poll = std::make_shared<std::function<void()>>();
    *poll = [=] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible()) {
            QTimer::singleShot(10, [poll] { (*poll)(); });
            return;
        }
        *shown = {box->text(), box->informativeText()};
        QList<QAbstractButton*> buttons = box->buttons();
        std::sort(buttons.begin(), buttons.end(), [box](QAbstractButton* a, QAbstractButton* b) {
            return a->mapTo(box, QPoint()).x() < b->mapTo(box, QPoint()).x();
        });
        for (QAbstractButton* b : buttons)
            *shown << b->text() + (b == box->defaultButton() ? "*" : "");
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        for (QAbstractButton* b : buttons)
            if (b->text() == press)
                b->click();
        if (press.isEmpty())
            QApplication::sendEvent(box, &escape);
    };
    QTimer::singleShot(0, [poll] { (*poll)(); });
    const int result = show();
    *poll = nullptr; // breaks the lambda's reference to itself
    return result;
}

} // namespace

// Buttons appear in the given order and answer by position; Escape answers
// the last button; the program's message boxes show the table's texts.
TEST(MessageBoxPresenterTest, ButtonsAnswerByPositionAndTheProgramsBoxesShowTheTableTexts)
{
    SCMessageBoxPresenter presenter;
    const SCAlert question{"K", "I", "Delete the clips?", "They cannot be restored.", {"Yes", "No"}};
    const auto ask = [&] { return presenter.showAlert(question); };
    Shown shown;
    EXPECT_EQ(answerBox(ask, "No", &shown), IMessagePresenter::kSecondButton);
    EXPECT_EQ(shown, QStringList({"Delete the clips?", "They cannot be restored.", "Yes*", "No"}));
    EXPECT_EQ(answerBox(ask, "Yes", &shown), IMessagePresenter::kFirstButton);
    EXPECT_EQ(answerBox(ask, "", &shown), IMessagePresenter::kSecondButton);
    const SCAlert notice{"K", "", "Done.", "", {"OK"}};
    EXPECT_EQ(answerBox([&] { return presenter.showAlert(notice); }, "", &shown),
              IMessagePresenter::kFirstButton);

    BLCommon::setMessagePresenter(&presenter);
    const int answer =
        answerBox([] { return BLCommon::sharedCtrl()->messageBox("MSG_632_3100", "MSG_632_3101", 0, 1); },
                  "Cancel", &shown);
    BLCommon::setMessagePresenter(nullptr);
    EXPECT_EQ(answer, IMessagePresenter::kSecondButton);
    EXPECT_NE(shown.value(0), "MSG_632_3100");
    EXPECT_EQ(shown, QStringList({BLLocalizedString("MSG_632_3100"), BLLocalizedString("MSG_632_3101"), "OK*",
                                  "Cancel"}));
}
