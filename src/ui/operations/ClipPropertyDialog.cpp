#include "ui/operations/ClipPropertyDialog.h"

#include "core/operations/BLClipPropertyCtrl.h"
#include "ui/common/LocalizedTitle.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int kPictureWidth = 240;
} // namespace

ClipPropertyDialog::ClipPropertyDialog(QWidget* parent)
    : QDialog(parent), m_picture(new QLabel(this)), m_usAscii(new QLineEdit(this)),
      m_valueAlias(new QLineEdit(this)), m_description(new QPlainTextEdit(this)),
      m_creator(new QLineEdit(this))
{
    setObjectName(QStringLiteral("ClipProperty"));
    m_usAscii->setMaxLength(BLClipPropertyCtrl::kMaxTitleBytes + 16); // the check tells the limit
    m_description->setTabChangesFocus(true);
    m_description->setFixedHeight(m_description->fontMetrics().lineSpacing() * 4 + 12);
    m_picture->setFixedSize(kPictureWidth, kPictureWidth * 9 / 16);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setStyleSheet(QStringLiteral("background: #202020;"));

    const struct
    {
        Field field;
        const char* label;
    } rows[] = {{TakeId, "Take:"},
                {UsAscii, "Title:"},
                {ValueAlias, "Alias:"},
                {Description, "Description:"},
                {Creator, "Creator:"},
                {Status, "Status:"},
                {RecodingMode, "Recording mode:"},
                {CreationDate, "Recorded:"},
                {LastUpDate, "Last update:"},
                {Duration, "Duration:"},
                {Size, "Size:"},
                {VideoFormat, "Video:"},
                {AudioFormat, "Audio:"},
                {MediaSpanning, "Continues on another card:"},
                {Device, "Device:"}};
    auto* form = new QFormLayout;
    for (const auto& row : rows) {
        QWidget* widget = nullptr;
        switch (row.field) {
        case UsAscii:
            widget = m_usAscii;
            break;
        case ValueAlias:
            widget = m_valueAlias;
            break;
        case Description:
            widget = m_description;
            break;
        case Creator:
            widget = m_creator;
            break;
        default: {
            auto* text = new QLabel(this);
            text->setTextFormat(Qt::PlainText);
            text->setTextInteractionFlags(Qt::TextSelectableByMouse);
            m_labels[row.field] = text;
            widget = text;
        }
        }
        form->addRow(QString::fromLatin1(row.label), widget);
    }

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(QStringLiteral("BTN_STYLE_OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(QStringLiteral("BTN_STYLE_CANCEL"));
    connect(buttons, &QDialogButtonBox::accepted, this, &ClipPropertyDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &ClipPropertyDialog::reject);

    auto* top = new QHBoxLayout;
    top->addWidget(m_picture, 0, Qt::AlignTop);
    top->addLayout(form, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);
    localizedTitleByObject(this);
}

QLineEdit* ClipPropertyDialog::lineEdit(Field field) const
{
    switch (field) {
    case UsAscii:
        return m_usAscii;
    case ValueAlias:
        return m_valueAlias;
    case Creator:
        return m_creator;
    default:
        return nullptr;
    }
}

void ClipPropertyDialog::setTitle(const QString& title)
{
    setWindowTitle(title);
}

void ClipPropertyDialog::setPicture(const QImage& picture)
{
    m_picture->setPixmap(picture.isNull()
                             ? QPixmap()
                             : QPixmap::fromImage(picture.scaled(m_picture->size(), Qt::KeepAspectRatio,
                                                                 Qt::SmoothTransformation)));
}

void ClipPropertyDialog::setField(Field field, const QString& text)
{
    if (field == Description)
        m_description->setPlainText(text);
    else if (QLineEdit* edit = lineEdit(field))
        edit->setText(text);
    else if (m_labels[field])
        m_labels[field]->setText(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
}

QString ClipPropertyDialog::field(Field field) const
{
    if (field == Description)
        return m_description->toPlainText();
    if (QLineEdit* edit = lineEdit(field))
        return edit->text();
    return m_labels[field] ? m_labels[field]->text() : QString();
}

int ClipPropertyDialog::runModal(BLClipPropertyCtrl* ctrl)
{
    m_ctrl = ctrl;
    m_usAscii->setFocus();
    const int code = exec();
    m_ctrl = nullptr;
    return code;
}

void ClipPropertyDialog::endModal(int code)
{
    done(code);
}

void ClipPropertyDialog::accept()
{
    if (m_ctrl)
        m_ctrl->OnOK();
    else
        QDialog::accept();
}

void ClipPropertyDialog::reject()
{
    if (m_ctrl)
        m_ctrl->OnCancel();
    else
        QDialog::reject();
}
