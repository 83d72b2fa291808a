#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>

class DOTakeData;

// One thumbnail of the grid: what the item shows of its take and the take's
// index in the pane's take list. The picture arrives later from the
// thumbnail cache; until then the item shows a placeholder.
class DOThumbData
{
public:
    DOThumbData() = default;
    DOThumbData(const DOTakeData& take, int indexTakeData);

    // Fills the shown values from the take (the index and picture stay).
    void setTakeData(const DOTakeData& take);
    // Re-renders the date text in the user's date settings.
    void updateDateText();

    const QString& getTitle() const { return m_title; }
    qint64 getSize() const { return m_size; }
    const QString& getDuration() const { return m_duration; }
    qint64 getDurationFrames() const { return m_durationFrames; }
    const QDateTime& getDate() const { return m_date; }
    const QString& getDateText() const { return m_dateText; }
    const QString& getTakeID() const { return m_takeID; }
    const QString& getUmid() const { return m_umid; }
    qint32 getTakeStatus() const { return m_takeStatus; }

    int getIndexTakeData() const { return m_indexTakeData; }
    void setIndexTakeData(int index) { m_indexTakeData = index; }

    const QImage& getImage() const { return m_image; }
    void setImage(const QImage& image) { m_image = image; }
    // Whether the picture has been asked of the thumbnail cache.
    bool isImageRequested() const { return m_imageRequested; }
    void setImageRequested(bool requested) { m_imageRequested = requested; }

    // Orders two records: negative, 0 or positive. Titles ignore case;
    // durations compare frame counts.
    int compareByTitle(const DOThumbData& other) const;
    int compareBySize(const DOThumbData& other) const;
    int compareByDuration(const DOThumbData& other) const;
    int compareByDate(const DOThumbData& other) const;

private:
    QString m_title;
    qint64 m_size = 0;
    QString m_duration;
    qint64 m_durationFrames = 0;
    QDateTime m_date;
    QString m_dateText;
    QString m_takeID;
    QString m_umid;
    qint32 m_takeStatus = 0;
    int m_indexTakeData = -1;
    QImage m_image;
    bool m_imageRequested = false;
};
