#include "platform/ui/PictureBox.h"

#include <QPainter>

namespace platform {

PictureBox::PictureBox(QWidget* parent)
    : QFrame(parent) {
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    setMinimumSize(16, 16);
}

void PictureBox::setPicture(const Picture& picture) {
    m_picture = picture;
    update();
    emit pictureChanged();
}

void PictureBox::setAlignment(Qt::Alignment alignment) {
    m_alignment = alignment;
    update();
}

QSize PictureBox::sizeHint() const {
    const QSize natural = m_picture.sizeHint();
    const int frame = 2 * frameWidth();
    if (!natural.isValid()) return QSize(120, 90);
    return natural.boundedTo(QSize(320, 240)) + QSize(frame, frame);
}

void PictureBox::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    if (m_picture.isNull()) return;
    const QRectF area = contentsRect();
    const QRectF target = Picture::fitInto(QSizeF(m_picture.sizeHint()), area, m_alignment);
    if (target.isEmpty()) return;
    QPainter painter(this);
    painter.setClipRect(area);
    m_picture.draw(painter, target);
}

} // namespace platform
