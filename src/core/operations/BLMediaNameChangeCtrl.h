#pragma once

#include <QString>

class IMediaNameChangeView;
class IOperationPane;

// Reads and changes the media name that a work folder's media profile
// carries: the dialog shows the name found, OK checks the typed one and
// writes it into MEDIAPRO.XML, and the panes are told. Main thread only.
class BLMediaNameChangeCtrl
{
public:
    static constexpr int kStopCodeOK = 1;
    static constexpr int kStopCodeCancel = 0;
    // A name is at most this many bytes in UTF-8.
    static constexpr int kMaxNameBytes = 62;

    // The pane may be null (the command-line tool).
    BLMediaNameChangeCtrl(IMediaNameChangeView* view, IOperationPane* mediaInfo);

    // Runs the dialog on the work folder; true when the name was written (or
    // confirmed unchanged) and SCMediaNameDidChangeNotification posted.
    bool showModal(const QString& path);
    // The media name found in the folder's profile ("" when none or unreadable).
    bool preShowModal(const QString& path);
    const QString& defaultName() const { return m_defaultName; }
    void onOK();
    void onCancel();
    // The typed name passes (refusals shown); *closeDialog when the folder went.
    bool checkInputTextField(bool* closeDialog = nullptr);
    // Writes the typed name unless unchanged; then posts the notification.
    bool execMediaNameChange(const QString& path);
    // Without the dialog (the command-line tool): the checks of OK, then the write.
    bool changeMediaName(const QString& path, const QString& name);
    bool updateMediaPro(const QString& path);
    static bool isWritable(const QString& path);

private:
    QString typedName() const;

    IMediaNameChangeView* m_view;
    IOperationPane* m_mediaInfoCtrl;
    QString m_path;
    QString m_defaultName;
    QString m_name; // the name when there is no view
};
