#pragma once

#include <QString>
#include <QStringList>

// One alert as asked for: the keys (or literal texts) the caller gave and the
// localised texts shown.
struct SCAlert
{
    QString messageKey;
    QString infoKey;
    QString message;
    QString informative;
    QStringList buttons; // one or two localised titles, first button first
};

// Shows a modal informational alert. The GUI implements it with a message box;
// tests install a recorder; command-line tools print the texts.
class IMessagePresenter
{
public:
    // Codes answered for the first and second button, as the alert returns them.
    static constexpr int kFirstButton = 1000;
    static constexpr int kSecondButton = 1001;

    virtual ~IMessagePresenter() = default;
    virtual int showAlert(const SCAlert& alert) = 0;
};
