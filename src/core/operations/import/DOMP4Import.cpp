#include "core/operations/import/DOMP4Import.h"

#include "core/card/BLDiskCtrl.h"
#include "core/formats/metadata/BLBIMCtrl.h"
#include "core/services/BLCommon.h"

#include <QFileInfo>

QString DOMP4Import::clipName(int n) const
{
    return QStringLiteral("P%1_%2").arg(getDate()).arg(n, 2, 10, QLatin1Char('0'));
}

void DOMP4Import::createTakeData(DOTakeData& take, const QString& mp4)
{
    const QString folder = m_sToImportClipFolder;
    const QString name = QFileInfo(folder).fileName();
    const QString reference = QStringLiteral("CLPR/") + name;
    take.setXMLUri(BLCommon::addDot(reference + QLatin1Char('/') + name + QStringLiteral("M01.XML")));
    take.setMP4Uri(BLCommon::addDot(reference + QLatin1Char('/') + name + QStringLiteral(".MP4")));
    take.setSMIUri(BLCommon::addDot(reference));
    if (take.getUmid().isEmpty()) {
        take.setUmid(BLCommon::sharedCtrl()->createUmid());
        m_sUmid = take.getUmid();
    }
    const BLBIMCtrl* bim = BLBIMCtrl::sharedCtrl();
    const QString now = BLCommon::getXmlFormatDateString(m_date.toLocalTime());
    take.setCurrentDuration(bim->getDuration());
    take.setCreationDate(now);
    take.setLastUpDate(now);
    take.setVideoCodec(bim->getVideoCodec());
    take.setFormatFps(bim->getFormatFps());
    take.setPixel(bim->getPixel());
    take.setNumOfVerticalLine(bim->getNumOfVertical());
    take.setARatio(bim->getARatio());
    take.setAudioCodec(bim->getAudioCodec());
    take.setNumOfChannel(QString::number(bim->getAudioChannel()));
    take.setManufacturer(QStringLiteral("..."));
    take.setModelName(QStringLiteral("..."));
    take.setUsAscii(QString());
    take.setAlias(QFileInfo(mp4).completeBaseName());
    take.setSize(BLDiskCtrl::sharedCtrl()->getClipSize(folder));
    take.setSingleClipFlag(true);
    take.setTakeStatus(3);
    take.setKeyFrame(0);
}
