#pragma once

#include <QString>

// Names of the program's notifications and of their user-info keys.
namespace SC {

inline const QString SCWorkFolderDidChangeNotification = QStringLiteral("SCWorkFolderDidChangeNotification");
inline const QString SCMainSelectFolderDidChangeNotification =
    QStringLiteral("SCMainSelectFolderDidChangeNotification");
inline const QString SCSelectFolderDataDidUpdateNotification =
    QStringLiteral("SCSelectFolderDataDidUpdateNotification");
inline const QString SCTakeDidAddNotification = QStringLiteral("SCTakeDidAddNotification");
inline const QString SCTakeDidDeleteNotification = QStringLiteral("SCTakeDidDeleteNotification");
inline const QString SCTakeDidUpdateNotification = QStringLiteral("SCTakeDidUpdateNotification");
inline const QString SCThumbViewSelectItemNotification = QStringLiteral("SCThumbViewSelectItemNotification");
inline const QString SCMoviePlayNotification = QStringLiteral("SCMoviePlayNotification");
inline const QString SCMovieStopNotification = QStringLiteral("SCMovieStopNotification");
inline const QString SCMoviePauseNotification = QStringLiteral("SCMoviePauseNotification");
inline const QString SCMovieThumbDidChangeNotification = QStringLiteral("SCMovieThumbDidChangeNotification");
inline const QString SCCacheImageRequestNotification = QStringLiteral("SCCacheImageRequestNotification");
inline const QString SCCacheImageCancelNotification = QStringLiteral("SCCacheImageCancelNotification");
inline const QString SCCacheImageDidGetNotification = QStringLiteral("SCCacheImageDidGetNotification");
inline const QString SCClipPropertyDidChangeNotification =
    QStringLiteral("SCClipPropertyDidChangeNotification");
inline const QString SCMediaNameDidChangeNotification = QStringLiteral("SCMediaNameDidChangeNotification");
inline const QString SCFolderNameDidChangeNotification = QStringLiteral("SCFolderNameDidChangeNotification");
inline const QString SCNewFolderDidMakeNotification = QStringLiteral("SCNewFolderDidMakeNotification");
inline const QString SCFolderDidDeleteNotification = QStringLiteral("SCFolderDidDeleteNotification");
inline const QString SCDateFormatDidChangeNotification = QStringLiteral("SCDateFormatDidChangeNotification");
inline const QString SCResolutionDidChangeNotification = QStringLiteral("SCResolutionDidChangeNotification");
inline const QString SCShowHouseKeepingWindowNotification =
    QStringLiteral("SCShowHouseKeepingWindowNotification");
inline const QString SCCloseHouseKeepingWindowNotification =
    QStringLiteral("SCCloseHouseKeepingWindowNotification");
inline const QString SCSub1SelectFolderDidChangeNotification =
    QStringLiteral("SCSub1SelectFolderDidChangeNotification");
// A volume was mounted or unmounted (BLVolumeWatcher); NSDevicePath is its mount point.
inline const QString SCWorkspaceDidMountNotification = QStringLiteral("SCWorkspaceDidMountNotification");
inline const QString SCWorkspaceDidUnmountNotification = QStringLiteral("SCWorkspaceDidUnmountNotification");

inline const QString SCKeepSelectKey = QStringLiteral("SCKeepSelectKey");
inline const QString SCDUpdateSelectFolderKey = QStringLiteral("SCDUpdateSelectFolderKey");
inline const QString SCAddSelectFolderKey = QStringLiteral("SCAddSelectFolderKey");
inline const QString SCAddTakeDatasKey = QStringLiteral("SCAddTakeDatasKey");
inline const QString SCDeleteSelectFolderKey = QStringLiteral("SCDeleteSelectFolderKey");
inline const QString SCDeleteTakeUmidsKey = QStringLiteral("SCDeleteTakeUmidsKey");
inline const QString SCUpdateSelectFolderKey = QStringLiteral("SCUpdateSelectFolderKey");
inline const QString SCUpdateTakeUmidsKey = QStringLiteral("SCUpdateTakeUmidsKey");
inline const QString SCUpdateTakeDatasKey = QStringLiteral("SCUpdateTakeDatasKey");
inline const QString SCItemUmidKey = QStringLiteral("SCItemUmidKey");
inline const QString SCItemDoPlayKey = QStringLiteral("SCItemDoPlayKey");
inline const QString SCPlaySelectFolderKey = QStringLiteral("SCPlaySelectFolderKey");
inline const QString SCPlayTakeDataKey = QStringLiteral("SCPlayTakeDataKey");
inline const QString SCMThumbSelectFolderKey = QStringLiteral("SCMThumbSelectFolderKey");
inline const QString SCMThumbUmidsKey = QStringLiteral("SCMThumbUmidsKey");
inline const QString SCMThumbFrameNoKey = QStringLiteral("SCMThumbFrameNoKey");
inline const QString SCCacheRMediaInfoKey = QStringLiteral("SCCacheRMediaInfoKey");
inline const QString SCCacheRSelectFolderKey = QStringLiteral("SCCacheRSelectFolderKey");
inline const QString SCCacheRTakeDataKey = QStringLiteral("SCCacheRTakeDataKey");
inline const QString SCCacheCMediaInfoKey = QStringLiteral("SCCacheCMediaInfoKey");
inline const QString SCCacheGSelectFolderKey = QStringLiteral("SCCacheGSelectFolderKey");
inline const QString SCCacheGUmidKey = QStringLiteral("SCCacheGUmidKey");
inline const QString SCCacheGImageKey = QStringLiteral("SCCacheGImageKey");
inline const QString SCCacheGFrameNoKey = QStringLiteral("SCCacheGFrameNoKey");
inline const QString SCCacheGTakeStatusKey = QStringLiteral("SCCacheGTakeStatusKey");
inline const QString SCSelectFolderKey = QStringLiteral("SCSelectFolderKey");
inline const QString SCIndexTakeDataKey = QStringLiteral("SCIndexTakeDataKey");
inline const QString SCDidChangeTakeDataKey = QStringLiteral("SCDidChangeTakeDataKey");
inline const QString SCMediaNameKey = QStringLiteral("SCMediaNameKey");
inline const QString SCSourcePathKey = QStringLiteral("SCSourcePathKey");
inline const QString SCDestinationPathKey = QStringLiteral("SCDestinationPathKey");
inline const QString SCParentPathKey = QStringLiteral("SCParentPathKey");
inline const QString SCDeletePathKey = QStringLiteral("SCDeletePathKey");
inline const QString NSDevicePath = QStringLiteral("NSDevicePath");

} // namespace SC
