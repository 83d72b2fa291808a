#include "core/services/BLPlistCtrl.h"
#include "support/QtPrinters.h"
#include "support/TestEnvironment.h"
#include "support/UserInput.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <csignal>
#include <sys/inotify.h>
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

// Counts how often a file is (re)placed in a folder: each save of the
// settings writes a temporary file and renames it over the settings file.
class SaveCounter
{
public:
    SaveCounter(const QString& folder, const QString& name) : m_name(name.toUtf8())
    {
        m_fd = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
        inotify_add_watch(m_fd, QFile::encodeName(folder).constData(), IN_MOVED_TO | IN_CLOSE_WRITE);
    }
    ~SaveCounter() { ::close(m_fd); }
    int count()
    {
        alignas(inotify_event) char buffer[8192];
        ssize_t length;
        while ((length = ::read(m_fd, buffer, sizeof buffer)) > 0) {
            for (char* p = buffer; p < buffer + length;) {
                const auto* event = reinterpret_cast<const inotify_event*>(p);
                if (event->len > 0 && m_name == event->name)
                    ++m_count;
                p += sizeof(inotify_event) + event->len;
            }
        }
        return m_count;
    }

private:
    QByteArray m_name;
    int m_fd = -1;
    int m_count = 0;
};

} // namespace

// The real program: started, stopped by a signal as a logout or Ctrl+C does,
// and checked for its log and settings.
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
        SaveCounter saves(config + "/Clipwright", "Clipwright.plist");

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

        // The frame and the layout are saved once: one save per frame key
        // and per splitter, besides the one save of each pane's first
        // selected folder at start.
        const auto settings = BLPlistCtrl::readPlistFile(config + "/Clipwright/Clipwright.plist");
        ASSERT_TRUE(settings.has_value());
        EXPECT_TRUE(settings->contains("MAIN_WIN_X") && settings->contains("MAIN_WIN_Y"));
        EXPECT_EQ(settings->value("MAIN_WIN_WIDTH").toDouble(), 1024.0);
        EXPECT_EQ(settings->value("MAIN_WIN_HEIGHT").toDouble(), 768.0);
        EXPECT_TRUE(settings->contains("LAYOUT_SPLIT"));
        EXPECT_EQ(saves.count(), 4 + 4 + 2);
    }
}
