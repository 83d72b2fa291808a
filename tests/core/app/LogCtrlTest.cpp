#include "core/services/BLLogCtrl.h"
#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using LogTest = cwtest::HomeTest;

namespace {
QString logDir(const cwtest::ScopedHome& home)
{
    return home.stateHome() + "/Clipwright";
}

void useLevel(const cwtest::ScopedHome& home, const QString& level)
{
    cwtest::writeSettings(home.configHome(), QVariantMap{{"LOG_FLAG", level}});
}
} // namespace

TEST_F(LogTest, LogLineFormatAndProcessIds)
{
    useLevel(home(), "ALL");
    BLLogCtrl* log = BLLogCtrl::sharedCtrl();
    log->debugLogForProcessId(7, "[A b] Start");
    log->infoLogForProcessId(12345, QString::fromUtf8("caf\u00e9"));
    const QList<QByteArray> lines = cwtest::readFile(logDir(home()) + "/Clipwright.log").split('\n');
    ASSERT_EQ(lines.size(), 3); // two lines and the empty rest after the last LF
    const QRegularExpression stamp(R"(^\d{4}/\d{2}/\d{2} \d{2}:\d{2}:\d{2} )");
    EXPECT_TRUE(stamp.match(QString::fromUtf8(lines[0])).hasMatch()) << lines[0].constData();
    EXPECT_EQ(lines[0].mid(20), "0007:[A b] Start\r");
    EXPECT_EQ(lines[1].mid(20), QString::fromUtf8("12345:caf\u00e9\r").toUtf8());
}

TEST_F(LogTest, LogLevelsFilterTheirCalls)
{
    struct Case
    {
        const char* level;
        bool debug;
        bool info;
    };
    for (const Case c : {Case{"DEBUG", true, false}, Case{"INFO", false, true}, Case{"ALL", true, true},
                         Case{"OFF", false, false}, Case{"verbose", false, false}}) {
        cwtest::ScopedHome fresh;
        useLevel(fresh, c.level);
        BLLogCtrl::sharedCtrl()->debugLogForProcessId(1, "debug-line");
        BLLogCtrl::sharedCtrl()->infoLogForProcessId(1, "info-line");
        const QByteArray text = cwtest::readFile(logDir(fresh) + "/Clipwright.log");
        EXPECT_EQ(text.contains("debug-line"), c.debug) << c.level;
        EXPECT_EQ(text.contains("info-line"), c.info) << c.level;
        if (!c.debug && !c.info) {
            EXPECT_FALSE(QFileInfo::exists(logDir(fresh))) << "no log folder at level " << c.level;
        }
    }
}

TEST_F(LogTest, LogRotatesOnlyAboveTheLimit)
{
    useLevel(home(), "ALL");
    const QString current = logDir(home()) + "/Clipwright.log";
    const QString older = current + ".1";
    QDir().mkpath(logDir(home()));
    auto makeFile = [](const QString& path, qint64 size) {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        ASSERT_TRUE(f.resize(size));
    };

    makeFile(current, BLLogCtrl::kRotateSize);
    BLLogCtrl::sharedCtrl()->debugLogForProcessId(1, "at the limit");
    EXPECT_FALSE(QFileInfo::exists(older));
    EXPECT_GT(QFileInfo(current).size(), BLLogCtrl::kRotateSize);

    makeFile(current, BLLogCtrl::kRotateSize + 1);
    makeFile(older, 10); // an earlier generation is replaced
    BLLogCtrl::sharedCtrl()->debugLogForProcessId(1, "alone");
    EXPECT_EQ(QFileInfo(older).size(), BLLogCtrl::kRotateSize + 1);
    const QByteArray text = cwtest::readFile(current);
    EXPECT_TRUE(text.endsWith("0001:alone\r\n"));
    EXPECT_EQ(text.count('\n'), 1);
}

TEST_F(LogTest, LogLinesFromManyThreadsStayWhole)
{
    useLevel(home(), "ALL");
    BLLogCtrl* log = BLLogCtrl::sharedCtrl();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([log, t] {
            for (int i = 0; i < 200; ++i)
                log->debugLogForProcessId(t, QString("thread %1 line %2 ").arg(t).arg(i) + QString(50, 'x'));
        });
    for (auto& th : threads)
        th.join();
    const QList<QByteArray> lines = cwtest::readFile(logDir(home()) + "/Clipwright.log").split('\n');
    ASSERT_EQ(lines.size(), 801);
    for (int i = 0; i < 800; ++i)
        EXPECT_TRUE(lines[i].endsWith(QByteArray(50, 'x') + "\r")) << lines[i].constData();
}
