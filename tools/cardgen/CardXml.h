#pragma once

#include "cardgen/CardPlan.h"

#include <QByteArray>

#include <vector>

namespace cardgen {

// The XML documents of a card, written as the camera writes them (UTF-8,
// indented with tabs, attributes in the order of the card format).
class CardXml
{
public:
    // "2024-05-01T10:00:00+02:00"
    static QString dateTime(const QDateTime& when);

    // <name>M01.XML of a clip or a take.
    static QByteArray nonRealTimeMeta(const QString& umid, int frames, const TimeCode& start,
                                      const TimeCode& last, const QDateTime& created, const QString& status,
                                      const QString& title, const EssenceFormat& format);
    // The take info (.SMI) of a clip: its essence, audio channels and real-time metadata.
    static QByteArray clipTakeInfo(const ClipPlan& clip, const EssenceFormat& format);
    // The take info of a multi-clip take: one ref per clip (and one to the next
    // part of a take that continues on another card).
    static QByteArray takeTakeInfo(const TakePlan& take, const std::vector<const ClipPlan*>& clips,
                                   const EssenceFormat& format);

    struct ListedTake
    {
        const TakePlan* take = nullptr;
        std::vector<const ClipPlan*> clips;
    };
    struct MediaProfile
    {
        QDateTime createdAt;
        QString mediaId;
        QString mediaName;
        std::vector<const ClipPlan*> clips; // the clips it lists
        std::vector<ListedTake> takes;
    };
    static QByteArray mediaProfile(const MediaProfile& profile, const EssenceFormat& format);
    // CUEUP.XML naming the last recorded clip (none for an empty card).
    static QByteArray cueUp(const ClipPlan* last);

    // The camera's own media-profile namespace; readers accept any.
    static constexpr const char* kMediaProfileNamespace =
        "urn:schemas-professionalDisc:mediaProfile:ver.1.00";
};

} // namespace cardgen
