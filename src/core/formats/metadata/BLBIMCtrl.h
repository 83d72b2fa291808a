#pragma once

#include <QByteArray>
#include <QString>

// The facts of the MP4 file last examined during an import: what the MP4
// checker learnt about its picture and sound, and the metadata document the
// camera may have embedded in it. The metadata of the new clip is built from
// them. One process-wide instance; an import examines one file at a time.
class BLBIMCtrl
{
public:
    static BLBIMCtrl* sharedCtrl();
    static void releaseCtrl();

    // Checks the file with the MP4 checker; when it passes, every field but
    // the embedded document is filled from it and the answer is true.
    // Otherwise the fields stay as they were.
    bool preImportMP4(const QString& path);
    // Keeps a copy of the metadata document embedded in the file and answers
    // true when there is one of at least one byte; else clears it and answers false.
    bool checkNonMetaExist(const QString& path);

    // Number of frames.
    quint32 getDuration() const { return m_uiDuration; }
    void setDuration(quint32 value) { m_uiDuration = value; }
    // Time-code base: "24", "25" or "30".
    const QString& gettcFps() const { return m_stcFps; }
    void settcFps(const QString& value) { m_stcFps = value; }
    // Index of the last frame (the number of frames less one).
    quint32 getFrameCount() const { return m_uiFrameCount; }
    void setFrameCount(quint32 value) { m_uiFrameCount = value; }
    // Video format name for metadata, "MPEG2HD35_1920_1080_MP@HL".
    const QString& getVideoCodec() const { return m_sVideoCodec; }
    void setVideoCodec(const QString& value) { m_sVideoCodec = value; }
    // Frame-rate name, "59.94i".
    const QString& getFormatFps() const { return m_sFormatFps; }
    void setFormatFps(const QString& value) { m_sFormatFps = value; }
    // Picture width and height in pixels, decimal.
    const QString& getPixel() const { return m_sPixel; }
    void setPixel(const QString& value) { m_sPixel = value; }
    const QString& getNumOfVertical() const { return m_sNumOfVertical; }
    void setNumOfVertical(const QString& value) { m_sNumOfVertical = value; }
    // "4:3", "16:9", or "..." when unknown.
    const QString& getARatio() const { return m_sARatio; }
    void setARatio(const QString& value) { m_sARatio = value; }
    // The sound is stereo.
    bool getPort() const { return m_bPort; }
    void setPort(bool value) { m_bPort = value; }
    int getAudioChannel() const { return m_iAudioChannel; }
    void setAudioChannel(int value) { m_iAudioChannel = value; }
    // Audio format name, "LPCM16".
    const QString& getAudioCodec() const { return m_sAudioCodec; }
    void setAudioCodec(const QString& value) { m_sAudioCodec = value; }
    const QByteArray& getNonMetaData() const { return m_NonMetaData; }
    void setNonMetaData(const QByteArray& value) { m_NonMetaData = value; }

private:
    BLBIMCtrl() = default;

    quint32 m_uiDuration = 0;
    QString m_stcFps;
    quint32 m_uiFrameCount = 0;
    QString m_sVideoCodec;
    QString m_sFormatFps;
    QString m_sPixel;
    QString m_sNumOfVertical;
    QString m_sARatio;
    bool m_bPort = false;
    int m_iAudioChannel = 0;
    QString m_sAudioCodec;
    QByteArray m_NonMetaData;
};
