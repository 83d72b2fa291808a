#include "ui/common/ProgressDialog.h"

#include "core/services/BLLocalizedStrings.h"
#include "core/services/BLProgressCtrl.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

ProgressDialog::ProgressDialog(QWidget* parent)
    : QDialog(parent), m_message(new QLabel(this)), m_progress(new QProgressBar(this)),
      m_cancel(new QPushButton(BLLocalizedString(QStringLiteral("BTN_STYLE_CANCEL")), this))
{
    setObjectName(QStringLiteral("Progress"));
    m_message->setObjectName(QStringLiteral("message"));
    m_progress->setObjectName(QStringLiteral("progress"));
    m_cancel->setObjectName(QStringLiteral("cancel"));
    m_message->setWordWrap(true);
    m_message->setMinimumWidth(360);
    m_progress->setTextVisible(false);
    m_cancel->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_message);
    layout->addWidget(m_progress);
    layout->addLayout(buttons);

    connect(m_cancel, &QPushButton::clicked, this, [this] {
        if (m_controller)
            m_controller->onCancel();
    });
}

void ProgressDialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

void ProgressDialog::setMessage(const QString& message)
{
    m_message->setText(message);
}

void ProgressDialog::setDeterminate(double value, double min, double max)
{
    const double share = qBound(0.0, (value - min) / (max - min), 1.0);
    m_progress->setRange(0, kSteps);
    m_progress->setValue(int(share * kSteps));
}

void ProgressDialog::setIndeterminate()
{
    m_progress->setRange(0, 0); // the bar's busy animation
}

void ProgressDialog::setCancelEnabled(bool enabled)
{
    m_cancel->setEnabled(enabled);
}

void ProgressDialog::runModal(BLProgressCtrl* controller)
{
    m_controller = controller;
    setWindowModality(parentWidget() ? Qt::WindowModal : Qt::ApplicationModal);
    exec();
    m_controller = nullptr;
}

void ProgressDialog::endModal()
{
    done(QDialog::Accepted);
}

void ProgressDialog::reject()
{
    if (m_cancel->isEnabled())
        m_cancel->click();
}

void ProgressDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (BLProgressCtrl* controller = m_controller)
        QMetaObject::invokeMethod(
            controller, [controller] { controller->windowDidBecomeMain(); }, Qt::QueuedConnection);
}

void ProgressDialog::closeEvent(QCloseEvent* event)
{
    event->ignore();
    reject();
}
