#pragma once

#include "core/card/DOTakeData.h"

#include <QImage>
#include <QString>

class BLNonMetaAcss;
class IClipPropertyView;
class IOperationPane;

// Show Info: the properties of one take in a modal dialog. Its title, alias,
// description and creator can be edited; OK checks them and writes them into
// the non-real-time metadata of every clip of the take and of the take's own
// file, then tells the panes (SCClipPropertyDidChangeNotification) so the
// grid shows the new title at once. Every file is replaced atomically, so a
// failed write leaves the previous file.
//
// Main thread only.
class BLClipPropertyCtrl
{
public:
    static constexpr int kStopCodeOK = 1;
    static constexpr int kStopCodeCancel = 0;
    // Byte limits of the editable texts (the title in ASCII, the rest in UTF-8).
    static constexpr int kMaxTitleBytes = 63;
    static constexpr int kMaxAliasBytes = 127;
    static constexpr int kMaxDescriptionBytes = 2047;
    static constexpr int kMaxCreatorBytes = 127;

    // The take at index of the pane's take list in the folder path; the pane
    // may be null (the folder's existence is then checked alone).
    BLClipPropertyCtrl(IClipPropertyView* view, const DOTakeData& take, int index, const QString& path,
                       IOperationPane* mediaInfo);

    void setPicture(const QImage& picture) { m_picture = picture; }
    // Runs the dialog; true when the take's metadata was changed.
    bool showModal();

    void OnOK();
    void OnCancel();

    // Fills the dialog from the take.
    void setOfLoadedData();
    // The checks of OK, in order; each refusal is shown. The typed texts
    // lose their blanks at both ends first.
    bool limitOfBytes();
    // The folder, its BPAV folder, its CLPR and the take's metadata file can
    // be read (written).
    bool isReadable(const QString& folder) const;
    bool isWritable(const QString& folder) const;
    // Writes the edited texts; true when the take's own file changed.
    bool upDateOfFieldData();
    // Brings the file's namespaces to the current version.
    static bool UpdateNonMetaVersion(const QString& path);

    const QString& getStrUpDate() const { return m_strUpDate; }
    void setStrUpDate(const QString& text) { m_strUpDate = text; }

private:
    // The file of a metadata reference in the folder's BPAV folder.
    QString metadataPath(const QString& reference) const;
    // Sets title, alias, description and creator as typed.
    bool writeFields(BLNonMetaAcss& meta) const;

    IClipPropertyView* m_view;
    DOTakeData m_takeData;
    int m_index;
    QString m_path;
    IOperationPane* m_mediaInfoCtrl;
    QString m_strUpDate;
    QImage m_picture;
};
