#pragma once

#include "core/app/preview/ITimeCodeView.h"

#include <QWidget>

// The time code of the frame shown, in fixed-width digits.
class SCTimeCodeField : public QWidget, public ITimeCodeView
{
    Q_OBJECT
public:
    explicit SCTimeCodeField(QWidget* parent = nullptr);

    const QString& text() const { return m_text; }
    void setTimeCode(const QString& text) override;

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_text;
};
