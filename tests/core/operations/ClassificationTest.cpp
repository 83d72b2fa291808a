#include "OperationsTestSupport.h"

#include "core/card/BLClipCtrl.h"

// Statuses, UMIDs, sizes and durations of every generated kind of card are
// checked against the generator's manifest by the housekeeping and scan
// tests; these are the cases no generated card shows.
using ClassificationTest = cwtest::HomeTest;
using Kind = cardgen::Damage::Kind;

TEST_F(ClassificationTest, ClipEntriesAreClassifiedByTheFilesTheyHold)
{
    cardgen::Options options = cwtest::CardFolder::fast(4);
    options.damages = {cwtest::damage(Kind::Missing, 1, {"BIM"}),
                       cwtest::damage(Kind::Missing, 2, {"MP4", "PPN"})};
    cwtest::CardFolder card(options);
    ASSERT_TRUE(card.ok()) << card.error().toStdString();
    const QString work = card.workFolder();
    const QString clpr = card.bpav() + "/CLPR/";
    BLClipCtrl ctrl;

    // The BIM extension matches in any case.
    ASSERT_TRUE(QFile::rename(clpr + "ABC0004/ABC0004R01.BIM", clpr + "ABC0004/ABC0004R01.BiM"));
    const DOClipData complete = ctrl.checkCLPRFiles(work, "ABC0004");
    EXPECT_EQ(complete.getClipStatus(), 0);
    EXPECT_EQ(complete.getBIMUri(), "./CLPR/ABC0004/ABC0004R01.BiM");
    // Without the real-time metadata the take-info reference names the folder.
    EXPECT_EQ(ctrl.checkCLPRFiles(work, "ABC0001").getSMIUri(), "./CLPR/ABC0001");
    // Without essence its other files are still named.
    EXPECT_EQ(ctrl.checkCLPRFiles(work, "ABC0002").getXMLUri(), "./CLPR/ABC0002/ABC0002M01.XML");

    // Anything else is unusable: an empty folder, a folder named like an MP4
    // file, metadata only found among hidden files.
    ASSERT_TRUE(QDir().mkpath(clpr + "EMPTY"));
    ASSERT_TRUE(QDir().mkpath(clpr + "FOLDER.MP4"));
    ASSERT_TRUE(cwtest::writeFile(clpr + "HIDDEN/HIDDEN.MP4", "x"));
    ASSERT_TRUE(cwtest::writeFile(clpr + "HIDDEN/.HIDDENM01.XML", "x"));
    for (const char* name : {"EMPTY", "FOLDER.MP4", "HIDDEN", "NOTTHERE"})
        EXPECT_EQ(ctrl.checkCLPRFiles(work, name).getClipStatus(), 5) << name;
}
