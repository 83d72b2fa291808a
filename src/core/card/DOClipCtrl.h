#pragma once

#include "core/card/DOTakeData.h"

#include <QList>
#include <QString>
#include <QStringList>

// The parameters of one clip operation (copy, move, delete, folder division
// and combine): the source and destination work folders, each given as a
// parent folder and a name, the takes chosen and the takes of the
// destination, and what the operation has changed so far. A value type; the
// dialog controller fills it, the checks complete it, the worker reads and
// updates it.
class DOClipCtrl
{
public:
    const QString& getCopyFromPath() const { return m_CopyFromPath; }
    void setCopyFromPath(const QString& value) { m_CopyFromPath = value; }
    const QString& getCopyFromFolderName() const { return m_CopyFromFolderName; }
    void setCopyFromFolderName(const QString& value) { m_CopyFromFolderName = value; }
    const QString& getCopyToPath() const { return m_CopyToPath; }
    void setCopyToFolder(const QString& value) { m_CopyToPath = value; }
    const QString& getCopyToFolderName() const { return m_CopyToFolderName; }
    void setCopyToFolderName(const QString& value) { m_CopyToFolderName = value; }

    // The source and destination work folders (parent joined with name).
    QString sourceWorkFolder() const;
    QString destinationWorkFolder() const;
    // Sets a work folder's parent and name.
    void setSourceWorkFolder(const QString& workFolder);
    void setDestinationWorkFolder(const QString& workFolder);

    const DOTakeData& getTargetTake() const { return m_TargetTake; }
    void setTargetTake(const DOTakeData& value) { m_TargetTake = value; }

    const QList<DOTakeData>& getFromTakes() const { return m_FromTakes; }
    void setFromTakes(const QList<DOTakeData>& value) { m_FromTakes = value; }

    const QList<DOTakeData>& getToTakes() const { return m_ToTakes; }
    void setToTakes(const QList<DOTakeData>& value) { m_ToTakes = value; }
    void setToTake(const DOTakeData& take) { m_ToTakes.append(take); }
    void setToTake(const DOTakeData& take, int index);
    void delToTake(int index);

    const QStringList& getDelUmid() const { return m_arrDelUmid; }
    void addDelUmid(const QString& umid) { m_arrDelUmid.append(umid); }
    void delDelUmid(int index);

    const QList<DOTakeData>& getAddTakes() const { return m_AddTake; }
    void setAddTakes(const QList<DOTakeData>& value) { m_AddTake = value; }
    void setAddTake(const DOTakeData& take) { m_AddTake.append(take); }
    void setAddTake(const DOTakeData& take, int index);
    void delAddTake(int index);

    bool getNewFolderFlag() const { return m_bNewFolderFlag; }
    void setNewFolderFlag(bool value) { m_bNewFolderFlag = value; }

    const QList<DOTakeData>& getNewTakes() const { return m_newTakes; }
    void setNewTakes(const QList<DOTakeData>& value) { m_newTakes = value; }
    void setNewTake(const DOTakeData& take, int index);
    void delNewTake(int index);

    bool getChangeFlag() const { return m_changeFlag; }
    void setChangeFlag(bool value) { m_changeFlag = value; }
    const DOTakeData& getNewTargetTake() const { return m_newTargetTake; }
    void setNewTargetTake(const DOTakeData& value) { m_newTargetTake = value; }
    bool getCombDelFlag() const { return m_combDelFlag; }
    void setCombDelFlag(bool value) { m_combDelFlag = value; }
    bool getChangeFolderFlag() const { return m_changeFolderFlag; }
    void setChangeFolderFlag(bool value) { m_changeFolderFlag = value; }

    const QList<DOTakeData>& getBeforeTakes() const { return m_BeforeTakes; }
    void setBeforeTakes(const QList<DOTakeData>& value) { m_BeforeTakes = value; }

    const QString& getMediaID() const { return m_MediaID; }
    void setMediaID(const QString& value) { m_MediaID = value; }

    // The clip creation date of the first chosen take; "" without one.
    QString getCreationDate() const;
    // Orders two records by getCreationDate(), ignoring case: negative, 0 or
    // positive (folder division and combine sort their records this way).
    int compareByTakeCreationDate(const DOClipCtrl& other) const;

private:
    QString m_CopyFromPath;
    QString m_CopyFromFolderName;
    QString m_CopyToPath;
    QString m_CopyToFolderName;
    DOTakeData m_TargetTake;
    QList<DOTakeData> m_FromTakes;
    QList<DOTakeData> m_ToTakes;
    QStringList m_arrDelUmid;
    QList<DOTakeData> m_AddTake;
    bool m_bNewFolderFlag = false;
    QList<DOTakeData> m_newTakes;
    bool m_changeFlag = false;
    DOTakeData m_newTargetTake;
    bool m_combDelFlag = true;
    bool m_changeFolderFlag = false;
    QList<DOTakeData> m_BeforeTakes;
    QString m_MediaID;
};
