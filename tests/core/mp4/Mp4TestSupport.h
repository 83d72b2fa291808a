#pragma once

#include "core/formats/mp4/CCreatePPT.h"
#include "support/Mp4Builder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <string>

// A temporary folder for crafted MP4 files and a checker run on them.
class Mp4Test : public ::testing::Test
{
protected:
    QString path(const QString& name) const { return m_dir.filePath(name); }
    static QByteArray local(const QString& p) { return QFile::encodeName(p); }

    QByteArray write(const QList<cwtest::Mp4Box>& boxes, const QString& name = "clip.MP4")
    {
        EXPECT_TRUE(cwtest::Mp4Builder::write(path(name), boxes));
        return local(path(name));
    }
    QByteArray write(const QByteArray& data, const QString& name = "clip.MP4")
    {
        EXPECT_TRUE(cwtest::Mp4Builder::write(path(name), data));
        return local(path(name));
    }

    // The error text of blCheckMP4 on the file, "" when it passes.
    std::string check(const QByteArray& file)
    {
        CCreatePPT ppt;
        const int ok = ppt.blCheckMP4(file.constData());
        const char* error = ppt.getErrorText();
        EXPECT_EQ(ok != 0, error == nullptr) << (error ? error : "");
        return ok ? std::string() : std::string(error ? error : "(no text)");
    }
    std::string check(const QList<cwtest::Mp4Box>& boxes) { return check(write(boxes)); }

    // A camera-style file: 59.94i 1920x1080 video in two chunks stored
    // I B B P B B, a stereo 16-bit audio track, no embedded XML.
    static cwtest::Mp4Builder cameraFile()
    {
        cwtest::Mp4Builder b;
        b.tracks << cwtest::Mp4Builder::videoTrack({"IBBPBB", "IBBPBB"});
        b.tracks << cwtest::Mp4Builder::audioTrack("twos", 2, {1601, 1602});
        return b;
    }

    QTemporaryDir m_dir;
};
