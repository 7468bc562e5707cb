#include "controls/KVSwitchControl.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionFocusRect>

namespace corvalis {

KVSwitchControl::KVSwitchControl(QWidget* parent) : QAbstractButton(parent) {
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void KVSwitchControl::setControlSize(ControlSize size) {
    size_ = size;
    updateGeometry();
    update();
}

QSize KVSwitchControl::sizeHint() const {
    return size_ == ControlSize::Small ? QSize(40, 22) : QSize(52, 28);
}

void KVSwitchControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colors = palette();
    QRectF track = QRectF(rect()).adjusted(2, 2, -2, -2);
    qreal radius = track.height() / 2;
    bool on = isChecked();
    QColor fill = on ? colors.color(QPalette::Highlight) : colors.color(QPalette::Mid);
    if (!isEnabled()) fill.setAlphaF(0.4);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(track, radius, radius);

    qreal knobSize = track.height() - 4;
    qreal x = on ? track.right() - 2 - knobSize : track.left() + 2;
    QRectF knob(x, track.top() + 2, knobSize, knobSize);
    painter.setBrush(isDown() ? colors.color(QPalette::Midlight) : colors.color(QPalette::Light));
    painter.setPen(QPen(colors.color(QPalette::Dark), 0.5));
    painter.drawEllipse(knob);

    if (hasFocus()) {
        QPen ring(colors.color(QPalette::Highlight), 2);
        ring.setCosmetic(true);
        painter.setPen(ring);
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius + 1, radius + 1);
    }
}

}  // namespace corvalis
