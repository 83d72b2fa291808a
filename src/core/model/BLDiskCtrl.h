#pragma once

#include <QString>

// Questions about the file systems the program writes to, and the machine's
// hardware address for UMIDs. Keeps no state; callable from any thread.
class BLDiskCtrl
{
public:
    static BLDiskCtrl* sharedCtrl();
    static void releaseCtrl();

    // ---- network address ----
    // 12 upper-case hexadecimal digits of the hardware address of the first up,
    // non-loopback interface that has one (twelve zeros when none); with
    // converted, "FFFE" is inserted after the sixth digit (16 digits).
    QString getMacAddress(bool converted) const;
    // Cuts or pads with "0" to 12 digits, then inserts "FFFE" after the sixth.
    static QString convertMacAddress(const QString& address);

private:
    BLDiskCtrl() = default;
};
