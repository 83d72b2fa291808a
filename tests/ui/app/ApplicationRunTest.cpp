#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"
#include "support/UserInput.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

namespace {

const QString kStartBanner = "0000:**************************************** Application start "
                             "****************************************";

QStringList logMessages(const QString& stateHome)
{
    QFile file(stateHome + "/Clipwright/Clipwright.log");
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList messages;
    for (const QString& line : QString::fromUtf8(file.readAll()).split("\r\n", Qt::SkipEmptyParts))
        messages << line.mid(20);
    return messages;
}

} // namespace

// The real program: started, stopped by a signal as a logout or Ctrl+C does,
// and checked for its log. What the closing saves is the controller test's.
TEST(ApplicationRunTest, ASignalEndsTheProgramThroughTheClosingOfItsWindow)
{
    const QString program = QStringLiteral(CLIPWRIGHT_BINARY_DIR "/src/clipwright");
    ASSERT_TRUE(QFile::exists(program)) << program.toStdString();

    for (int signalNumber : {SIGTERM, SIGINT}) {
        SCOPED_TRACE(signalNumber);
        QTemporaryDir home;
        const QString config = home.filePath(".config");
        const QString state = home.filePath(".local/state");
        cwtest::writeSettings(config, {{"LOG_FLAG", "ALL"}});

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        const QString runtime = home.filePath(".runtime");
        QDir().mkpath(runtime);
        QFile::setPermissions(runtime,
                              QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        for (const auto& [name, value] : {std::pair{"HOME", home.path()},
                                          {"XDG_CONFIG_HOME", config},
                                          {"XDG_STATE_HOME", state},
                                          {"XDG_CACHE_HOME", home.filePath(".cache")},
                                          {"XDG_DATA_HOME", home.filePath(".local/share")},
                                          {"XDG_RUNTIME_DIR", runtime},
                                          {"QT_QPA_PLATFORM", QString("offscreen")}})
            environment.insert(name, value);
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(program, {});
        ASSERT_TRUE(process.waitForStarted(10000));

        // The start banner is written once the stop signals are handled.
        ASSERT_TRUE(cwtest::waitFor([&] { return logMessages(state).contains(kStartBanner); }, 20000));
        ::kill(static_cast<pid_t>(process.processId()), signalNumber);
        ASSERT_TRUE(process.waitForFinished(20000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), 0);

        // The window closed once, then the application terminated.
        const QStringList log = logMessages(state);
        EXPECT_EQ(log.count("0000:[BLMainWindowCtrl windowWillCloseNotification]"), 1);
        EXPECT_GT(log.indexOf("0000:[BLApplication applicationWillTerminate]"),
                  log.indexOf("0000:[BLMainWindowCtrl windowWillCloseNotification]"));
    }
}
