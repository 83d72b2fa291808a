#pragma once

#include "cardgen/CardGenerator.h"
#include "core/card/DOTakeData.h"
#include "core/operations/IClipTransferView.h"
#include "core/services/BLHeadlessProgressView.h"
#include "core/services/BLProgressCtrl.h"
#include "core/services/SCNotificationCenter.h"
#include "core/services/SCNotificationNames.h"
#include "support/CardFolder.h"
#include "support/MessageRecorder.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

namespace optest {

// The takes of a work folder read the way a folder scan reads them: every
// CLPR and TAKR entry classified, clips claimed by their takes, the rest
// single-clip takes, all filled from their metadata; in folder-name order.
QList<DOTakeData> loadTakes(const QString& workFolder);

// Opens a tree to every user (folders 0777, files 0666) so that permission
// checks made as an ordinary user reach into it; also opens the folders above
// up to the temporary folder.
void openTree(const QString& root);

// Every entry under a folder (links not followed) with what identifies it:
// a file's contents, a folder's mark, a link's target.
QMap<QString, QByteArray> snapshot(const QString& root);

// A dialog as a user answers it: OK with each answer in turn until the
// controller ends it (a refusal that keeps it open gets the next answer),
// then Cancel. answer() is the one being tried.
template <class View, class Ctrl> class AnsweringDialog : public View
{
public:
    explicit AnsweringDialog(QStringList answers) : m_answers(std::move(answers)) {}
    int runModal(Ctrl* ctrl) override
    {
        for (const QString& answer : std::as_const(m_answers)) {
            m_answer = answer;
            ctrl->onOK();
            if (m_ended)
                return m_code;
        }
        ctrl->onCancel();
        return m_code;
    }
    void endModal(int code) override
    {
        m_ended = true;
        m_code = code;
    }

protected:
    const QString& answer() const { return m_answer; }

private:
    QStringList m_answers;
    QString m_answer;
    bool m_ended = false;
    int m_code = 0;
};

// The copy or move dialog answered with destination folder names.
class AnsweringTransferView : public AnsweringDialog<IClipTransferView, IClipTransferCtrl>
{
public:
    using AnsweringDialog::AnsweringDialog;
    void setTitle(const QString&) override {}
    void setMessage(const QString&) override {}
    void setSource(const QString&) override {}
    void setDestination(const QString&) override {}
    QString destination() const override { return answer(); }
};

// A worker whose pauses (after each folder moved) call `step` with the
// progress so far.
template <class Thread> class Paced : public Thread
{
public:
    template <class... Args>
    explicit Paced(std::function<void(Thread&, double)> step, Args&&... args)
        : Thread(std::forward<Args>(args)...), m_step(std::move(step))
    {
    }
    void waitThread() override { m_step(*this, this->progressValue()); }

private:
    std::function<void(Thread&, double)> m_step;
};

// Replaces a text in a file; fails the test when it is not there.
void replaceInFile(const QString& path, const QString& from, const QString& to);

// A test of an operation on takes: a home with an empty "media" folder, the
// progress dialog shown through `progress`, the messages in `messages` and
// the folders named by reload notifications in `updates`.
class OperationTest : public cwtest::HomeTest
{
protected:
    void SetUp() override
    {
        HomeTest::SetUp();
        BLProgressCtrl::sharedCtrl()->setView(&progress);
        SCNotificationCenter::defaultCenter()->addObserver(
            this, SC::SCSelectFolderDataDidUpdateNotification, [this](const SCNotification& n) {
                updates << n.userInfo.value(SC::SCDUpdateSelectFolderKey).toString();
            });
        ASSERT_TRUE(QDir().mkpath(home().path("media")));
    }
    void TearDown() override
    {
        SCNotificationCenter::defaultCenter()->removeObserver(this);
        BLProgressCtrl::sharedCtrl()->setView(nullptr);
        HomeTest::TearDown();
    }

    BLHeadlessProgressView progress;
    cwtest::MessageRecorder messages;
    QStringList updates;
};

} // namespace optest

// Prints a snapshot by its entries' names, one a line, so that a difference
// shows which entries differ.
inline void PrintTo(const QMap<QString, QByteArray>& entries, std::ostream* os)
{
    for (auto it = entries.cbegin(); it != entries.cend(); ++it)
        *os << "\n  " << it.key().toStdString() << " " << it.value().left(12).toStdString();
}
