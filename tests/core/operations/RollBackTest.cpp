#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"
#include "core/card/DOClipCtrl.h"
#include "core/services/BLCommon.h"

// A roll-back after a cancel or a failure is shown by the copy, move, division
// and combine tests; this is the case they cannot reach: a take brought into a
// destination as NEW0001 goes back under that name, and a folder of the
// destination named like the take's source form stays.
using RollBackTest = cwtest::HomeTest;

TEST_F(RollBackTest, WithChangedNamesTheDestinationFormsAreRolledBack)
{
    const cwtest::CardFolder card(cwtest::CardFolder::fast(4));
    cardgen::Options options = cwtest::CardFolder::fast(1);
    options.prefix = "XYZ";
    options.recorded = QDateTime(QDate(2020, 1, 1), QTime(10, 0)); // UMIDs of their own
    const cwtest::CardFolder destination(options);
    ASSERT_TRUE(card.ok() && destination.ok());
    const QList<DOTakeData> takes = optest::loadTakes(card.workFolder());
    const QMap<QString, QByteArray> source = optest::snapshot(card.workFolder());
    ASSERT_TRUE(BLCommon::copyFile(card.bpav() + "/CLPR/ABC0001", destination.bpav() + "/CLPR/NEW0001"));
    ASSERT_TRUE(BLCommon::copyFile(card.bpav() + "/CLPR/ABC0004", destination.bpav() + "/CLPR/ABC0001"));
    DOTakeData renamed = takes.at(0);
    renamed.setXMLUri("./CLPR/NEW0001/ABC0001M01.XML");
    renamed.setSMIUri("./CLPR/NEW0001/ABC0001.SMI");
    renamed.setMP4Uri("./CLPR/NEW0001/ABC0001.MP4");
    DOClipCtrl clipCtrl;
    clipCtrl.setSourceWorkFolder(card.workFolder());
    clipCtrl.setDestinationWorkFolder(destination.workFolder());
    clipCtrl.setFromTakes({takes.at(0)});
    clipCtrl.setToTakes(optest::loadTakes(destination.workFolder()));
    clipCtrl.setNewTakes({renamed});
    clipCtrl.setChangeFlag(true);
    BLClipCtrl().processCancel(clipCtrl, 1);
    EXPECT_FALSE(QFileInfo::exists(destination.bpav() + "/CLPR/NEW0001"));
    EXPECT_TRUE(QFileInfo(destination.bpav() + "/CLPR/ABC0001/ABC0004.MP4").isFile());
    EXPECT_EQ(optest::snapshot(card.workFolder()), source);
}
