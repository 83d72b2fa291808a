#include "core/services/BLHeadlessProgressView.h"

#include "core/services/BLProgressCtrl.h"

#include <QEventLoop>

void BLHeadlessProgressView::setDeterminate(double value, double min, double max)
{
    m_value = value;
    m_min = min;
    m_max = max;
    m_determinate = true;
}

void BLHeadlessProgressView::runModal(BLProgressCtrl* controller)
{
    QEventLoop loop;
    m_controller = controller;
    m_loop = &loop;
    // "On screen" as soon as the loop runs.
    QMetaObject::invokeMethod(
        controller, [controller] { controller->windowDidBecomeMain(); }, Qt::QueuedConnection);
    loop.exec();
    m_loop = nullptr;
    m_controller = nullptr;
}

void BLHeadlessProgressView::endModal()
{
    if (m_loop)
        m_loop->quit();
}

void BLHeadlessProgressView::pressCancel()
{
    if (m_controller && m_cancelEnabled)
        m_controller->onCancel();
}
