#pragma once

class IPreferencesView;

// Controller of the Preferences dialog: date order, date separator, preview
// resolution and whether copies are verified. Nothing is stored until OK; OK
// stores the four settings and then posts SCDateFormatDidChangeNotification
// and SCResolutionDidChangeNotification.
class BLPreferencesCtrl
{
public:
    static constexpr int kStopCodeOK = 1;
    static constexpr int kStopCodeCancel = 0;

    explicit BLPreferencesCtrl(IPreferencesView& view);

    void showModal();
    void onOK();
    void onCancel();
    // Any control of the dialog changed: refresh the sample.
    void onChanged();

    void readData();
    void writeData();
    void showSample();

private:
    IPreferencesView& m_view;
};
