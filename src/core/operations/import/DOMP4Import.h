#pragma once

#include "core/card/DOClipCtrl.h"
#include "core/card/DOTakeData.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

// The parameters and results of one import of MP4 files into a work folder,
// and the making of the take record of each imported clip. A value type.
class DOMP4Import
{
public:
    explicit DOMP4Import(const QString& toImportFolder = {}) : m_sToImportFolder(toImportFolder) {}

    // The file last chosen with the dialog's Search button.
    const QString& getSelectFile() const { return m_sSelectFile; }
    void setSelectFile(const QString& value) { m_sSelectFile = value; }
    // The MP4 files to import, in list order.
    const QStringList& getArray() const { return m_array; }
    void setArray(const QStringList& value) { m_array = value; }
    // The time of the import in GMT as 14 digits, yyyyMMddhhmmss.
    QString getDate() const { return m_date.toUTC().toString(QStringLiteral("yyyyMMddhhmmss")); }
    const QDateTime& getDateTime() const { return m_date; }
    void setDate(const QDateTime& value) { m_date = value.toUTC(); }
    // The destination work folder (the folder that holds BPAV).
    const QString& getToImportFolder() const { return m_sToImportFolder; }
    void setToImportFolder(const QString& value) { m_sToImportFolder = value; }
    // The clip folder made for the file being imported.
    const QString& getToImportClipFolder() const { return m_sToImportClipFolder; }
    void setToImportClipFolder(const QString& value) { m_sToImportClipFolder = value; }
    // The UMID given to the last take made.
    const QString& getUmid() const { return m_sUmid; }
    void setUmid(const QString& value) { m_sUmid = value; }
    // The take records made by this import.
    const QList<DOTakeData>& getAddTake() const { return m_arrAddTake; }
    void setAddTake(const QList<DOTakeData>& value) { m_arrAddTake = value; }
    // The takes selected in the pane when the dialog opened.
    const QList<DOTakeData>& getTakeData() const { return m_arrTakeData; }
    void setTakeData(const QList<DOTakeData>& value) { m_arrTakeData = value; }
    // Progress: bytes done and the total of the files copied.
    qint64 getNowFileSize() const { return m_llNowFileSize; }
    void setNowFileSize(qint64 value) { m_llNowFileSize = value; }
    qint64 getImportFileSizeMax() const { return m_llImportFileSizeMax; }
    void setImportFileSizeMax(qint64 value) { m_llImportFileSizeMax = value; }
    // One record per imported file, for the roll-back and the pane update.
    const QList<DOClipCtrl>& getArrayClipCtrl() const { return m_arrClipCtrl; }
    void setArrayClipCtrl(const QList<DOClipCtrl>& value) { m_arrClipCtrl = value; }

    // The clip name of the file at the 1-based place n: "P" + date + "_%02d".
    QString clipName(int n) const;

    // Fills the take record of the clip in the to-import clip folder from the
    // facts BLBIMCtrl holds about its MP4 file (whose original path is mp4):
    // references, durations, formats, the import time as creation and update
    // date, the alias from the file name. A take without a UMID gets a new
    // one, which the import keeps too.
    void createTakeData(DOTakeData& take, const QString& mp4);

private:
    QString m_sSelectFile;
    QStringList m_array;
    QDateTime m_date;
    QString m_sToImportFolder;
    QString m_sToImportClipFolder;
    QString m_sUmid;
    QList<DOTakeData> m_arrAddTake;
    QList<DOTakeData> m_arrTakeData;
    qint64 m_llNowFileSize = 0;
    qint64 m_llImportFileSizeMax = 0;
    QList<DOClipCtrl> m_arrClipCtrl;
};
