#include "core/card/BLTakeInfoCtrl.h"

#include "core/formats/metadata/BLTakeInfoAcss.h"

namespace {
const QString kUmidPrefix = QStringLiteral("urn:smpte:umid:");
// Group of the clip list in a take-info file.
constexpr int kPlainGroup = 1;

// UMIDs compare as 64 hexadecimal digits, whatever their case or prefix.
bool sameUmid(const QString& a, const QString& b)
{
    return DOTakeInfo::toStoredUmid(a).compare(DOTakeInfo::toStoredUmid(b), Qt::CaseInsensitive) == 0;
}

DOTRef refOf(const DOTakeInfo& entry)
{
    DOTRef ref;
    ref.setSrc(entry.getUmid());
    ref.setClipBegin(entry.getClipBegin());
    ref.setClipEnd(entry.getClipEnd());
    ref.setBegin(entry.getBegin());
    ref.setEnd(entry.getEnd());
    return ref;
}

bool namesClipOf(const DOTakeInfo& entry, const DOTakeData& take)
{
    for (const DOClipData& clip : take.getClipData())
        if (sameUmid(entry.getSrc(), clip.getUmid()))
            return true;
    return false;
}
} // namespace

bool BLTakeInfoCtrl::restructuringTakeInfo(const QString& path, const QList<DOTakeInfo>& takeInfo)
{
    QList<DOTRef> refs;
    for (const DOTakeInfo& entry : takeInfo)
        refs.append(refOf(entry));
    BLTakeInfoAcss acss;
    if (!acss.loadForFilePath(path))
        return false;
    acss.delRefData(QString(), kPlainGroup);
    return acss.setRefData(refs, kPlainGroup) && acss.save();
}

bool BLTakeInfoCtrl::createTakeInfo(const QString& path, const DOTakeData& changeTake,
                                    const DOTakeData& spanTake)
{
    if (changeTake.getClipData().isEmpty())
        return false;
    const QList<DOTakeInfo>& entries = changeTake.getTakeInfo();
    const QString firstClip = changeTake.getClipData().first().getUmid();
    qsizetype index = 0;
    for (qsizetype i = 0; i < entries.size(); ++i)
        if (sameUmid(entries[i].getSrc(), firstClip)) {
            index = i + 1;
            break;
        }
    while (index < entries.size() && namesClipOf(entries[index], changeTake))
        ++index;
    if (index >= entries.size() || entries[index].getSrc().isEmpty())
        return true;

    BLTakeInfoAcss acss;
    if (!acss.loadForFilePath(path))
        return false;
    const QList<DOTRef> refs = getNewTakeInfo(entries[index].getSrc(), changeTake, spanTake.getUmid());
    DOTSmil smil;
    if (!acss.getSmilData(smil, QString()))
        return false;
    // The root keeps the form it was written in, with or without the URN prefix.
    smil.setUmid(smil.getUmid().startsWith(kUmidPrefix) ? kUmidPrefix + changeTake.getUmid()
                                                        : changeTake.getUmid());
    acss.delRefData(QString(), kPlainGroup);
    DOTBody body = smil.getBody();
    DOTPar par = body.getPar();
    par.setRef(refs);
    body.setPar(par);
    smil.setBody(body);
    return acss.setSmilData(smil) && acss.save();
}

QList<DOTRef> BLTakeInfoCtrl::getNewTakeInfo(const QString& src, const DOTakeData& take,
                                             const QString& addUmid)
{
    QList<DOTRef> refs;
    bool present = false;
    QString begin;
    for (const DOTakeInfo& entry : take.getTakeInfo()) {
        if (entry.getSrc() == src) {
            begin = entry.getBegin();
            break;
        }
        refs.append(refOf(entry));
        if (sameUmid(entry.getSrc(), addUmid))
            present = true;
    }
    if (!present) {
        // The spanning take starts where the first foreign entry started.
        DOTRef ref;
        ref.setSrc(kUmidPrefix + addUmid);
        ref.setClipBegin(begin);
        ref.setBegin(begin);
        refs.append(ref);
    }
    return refs;
}
