#include "ui/export/MPEG2TSConvertDialog.h"

#include "ui/common/LocalizedTitle.h"

#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

MPEG2TSConvertDialog::MPEG2TSConvertDialog(QWidget* parent)
    : QDialog(parent), m_label(new QLabel(this)), m_path(new QLineEdit(this)),
      m_choose(new QPushButton(QStringLiteral("BTN_STYLE_CHOOSE"), this)), m_counter(new QLabel(this)),
      m_message(new QLabel(this)), m_progress(new QProgressBar(this)),
      m_start(new QPushButton(QStringLiteral("BTN_STYLE_START"), this)),
      m_cancel(new QPushButton(QStringLiteral("BTN_STYLE_CANCEL"), this)),
      m_close(new QPushButton(QStringLiteral("BTN_STYLE_CLOSE"), this))
{
    setObjectName(QStringLiteral("MPEG2TSConvert"));
    setWindowTitle(QStringLiteral("LOCALIZED_MPEG2TSCONVERT_TITLE"));
    m_path->setObjectName(QStringLiteral("path"));
    m_path->setMinimumWidth(360);
    m_message->setTextFormat(Qt::PlainText);
    m_message->setWordWrap(true);
    m_message->setMinimumHeight(2 * m_message->fontMetrics().lineSpacing());
    m_progress->setRange(0, 100);
    m_start->setDefault(true);
    m_cancel->hide();
    connect(m_choose, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onOpenDialog();
    });
    connect(m_start, &QPushButton::clicked, this, [this] {
        if (m_ctrl)
            m_ctrl->onStart();
    });
    connect(m_cancel, &QPushButton::clicked, this, [this] {
        m_cancel->setEnabled(false); // once is enough
        if (m_ctrl)
            m_ctrl->onCancel();
    });
    connect(m_close, &QPushButton::clicked, this, &MPEG2TSConvertDialog::reject);

    auto* destination = new QHBoxLayout;
    destination->addWidget(m_path, 1);
    destination->addWidget(m_choose);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_counter);
    buttons->addStretch(1);
    buttons->addWidget(m_start);
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_label);
    layout->addLayout(destination);
    layout->addWidget(m_message);
    layout->addWidget(m_progress);
    layout->addLayout(buttons);

    localizedTitleByObject(this);
}

void MPEG2TSConvertDialog::setDestinationLabel(const QString& text)
{
    m_label->setText(text);
}

void MPEG2TSConvertDialog::setPath(const QString& path)
{
    m_path->setText(path);
}

QString MPEG2TSConvertDialog::path() const
{
    return m_path->text();
}

void MPEG2TSConvertDialog::setCounter(const QString& text)
{
    m_counter->setText(text);
}

void MPEG2TSConvertDialog::setMessage(const QString& text)
{
    QString shown = text;
    m_message->setText(shown.replace(QLatin1Char('\r'), QLatin1Char('\n')));
}

void MPEG2TSConvertDialog::setProgress(int value)
{
    m_progress->setValue(value);
}

void MPEG2TSConvertDialog::setButtons(bool enabled, bool running)
{
    m_path->setEnabled(enabled);
    m_choose->setEnabled(enabled);
    m_start->setEnabled(enabled);
    m_close->setEnabled(enabled);
    m_start->setVisible(!running);
    m_cancel->setVisible(running);
    m_cancel->setEnabled(running);
}

QString MPEG2TSConvertDialog::chooseFolder(const QString& start)
{
    return QFileDialog::getExistingDirectory(this, QString(), start);
}

void MPEG2TSConvertDialog::runModal(IMPEG2TSConvertCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_start->setFocus();
    exec();
    m_ctrl = nullptr;
}

void MPEG2TSConvertDialog::endModal()
{
    done(QDialog::Accepted);
}

void MPEG2TSConvertDialog::reject()
{
    if (!m_ctrl)
        QDialog::reject();
    else if (m_close->isEnabled())
        m_ctrl->onClose();
}
