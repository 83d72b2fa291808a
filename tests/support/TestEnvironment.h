#pragma once

#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace cwtest {

// Points HOME and the XDG folders at a fresh temporary directory and drops the
// shared singletons, so each test starts with no settings, log or cache.
class ScopedHome
{
public:
    ScopedHome();
    ~ScopedHome();
    QString home() const { return m_dir.path(); }
    QString configHome() const;
    QString stateHome() const;
    QString cacheHome() const;
    QString path(const QString& relative) const;

private:
    QTemporaryDir m_dir;
    QByteArray m_previousHome;
};

// Releases every shared singleton so the next use re-reads the environment.
void releaseSingletons();

// Writes a settings file (key -> value) before the store is created.
void writeSettings(const QString& configHome, const QVariantMap& values);

// The current home's log lines without their time stamps ("PPPP:message").
QStringList logMessages();

// Runs the event loop until the condition holds; false after the timeout.
bool waitFor(const std::function<bool()>& condition, int milliseconds = 10000);
// Runs the event loop for a while so that queued notifications arrive.
void settle(int milliseconds = 50);

// A file's bytes; empty when it cannot be read.
QByteArray readFile(const QString& path);
// Writes a file, making its folder first; false on an error.
bool writeFile(const QString& path, const QByteArray& data);

// Base fixture: a fresh home per test.
class HomeTest : public ::testing::Test
{
protected:
    void SetUp() override { m_home = std::make_unique<ScopedHome>(); }
    void TearDown() override { m_home.reset(); }
    ScopedHome& home() { return *m_home; }

private:
    std::unique_ptr<ScopedHome> m_home;
};

// Installs the process-wide isolation: called by the test mains before
// anything else runs.
void isolateProcessHome();

} // namespace cwtest
