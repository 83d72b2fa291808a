#pragma once

#include <QObject>

// Installed on the application: a right mouse press that arrives while none
// of the program's windows has the focus only activates the clicked window;
// neither the press, its release nor a context menu reaches the window.
class RightClickActivationFilter : public QObject
{
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_swallowRelease = false;
};
