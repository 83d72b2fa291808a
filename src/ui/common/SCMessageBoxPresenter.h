#pragma once

#include "core/services/IMessagePresenter.h"

#include <QPointer>

class QWidget;

// Shows alerts as informational message boxes with the buttons in the order
// given, the first being the default. Escape answers the last button.
class SCMessageBoxPresenter : public IMessagePresenter
{
public:
    // The alerts are modal on the application; parent (may be null) only
    // places them over the main window.
    explicit SCMessageBoxPresenter(QWidget* parent = nullptr);

    int showAlert(const SCAlert& alert) override;

private:
    QPointer<QWidget> m_parent;
};
