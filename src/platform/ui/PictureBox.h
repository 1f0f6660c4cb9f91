#pragma once
// The picture box of the project windows (`Image1[i]`): shows a Picture scaled to fit, keeping
// its proportions; an empty box shows only its sunken frame.
#include "platform/Picture.h"

#include <QFrame>

namespace platform {

class PictureBox : public QFrame {
    Q_OBJECT
public:
    explicit PictureBox(QWidget* parent = nullptr);

    const Picture& picture() const { return m_picture; }
    void setPicture(const Picture& picture);
    void clear() { setPicture(Picture()); }

    // Where the picture sits when the box's proportions differ from the picture's.
    Qt::Alignment alignment() const { return m_alignment; }
    void setAlignment(Qt::Alignment alignment);

    QSize sizeHint() const override;

signals:
    void pictureChanged();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Picture m_picture;
    Qt::Alignment m_alignment = Qt::AlignCenter;
};

} // namespace platform
