#pragma once

#include <QAbstractButton>
#include <QPixmap>

// A button drawn entirely by two images of the project's resources: one while
// it is up, one while it is held down.
class SCImageButton : public QAbstractButton
{
    Q_OBJECT
public:
    explicit SCImageButton(QWidget* parent = nullptr);

    // Resource names such as "macbtn_play_n" (":/images/<name>.svg").
    void setImages(const QString& normal, const QString& pressed);
    // The name of the image shown now.
    QString shownImage() const { return isDown() ? m_pressedName : m_normalName; }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString m_normalName;
    QString m_pressedName;
    QPixmap m_normal;
    QPixmap m_pressed;
};
