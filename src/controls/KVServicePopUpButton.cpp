#include "controls/KVServicePopUpButton.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPainter>

#include "controls/KVServicesBar.h"
#include "controls/LocalizedText.h"

namespace corvalis {

KVServicePopUpButton::KVServicePopUpButton(QWidget* parent) : QToolButton(parent) {
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    setPopupMode(QToolButton::InstantPopup);
    setAccessibleName(localized("ActionButton"));
    setToolTip(accessibleName());
    // The parent given here arrived before this class existed: its ParentChange went to QWidget.
    setupFrame();
}

void KVServicePopUpButton::setDrawLeftEdge(bool draw) {
    if (draw == drawLeftEdge_) return;
    drawLeftEdge_ = draw;
    updateFrame();
    update();
}

QSize KVServicePopUpButton::barSize() const {
    if (!bar_) return {};
    // Embedded at the bottom of its container, the bar's last row is the container's border.
    return {bar_->buttonWidth() + (drawLeftEdge_ ? 1 : 0), bar_->bottomBarHeight() - (bar_->isEmbeddedAtBottom() ? 1 : 0)};
}

void KVServicePopUpButton::setupFrame() {
    bar_ = qobject_cast<KVServicesBar*>(parentWidget());
    updateFrame();
}

void KVServicePopUpButton::updateFrame() {
    if (bar_) {
        setFixedSize(barSize());
        sizedByBar_ = true;
    } else if (sizedByBar_) {
        // Out of the bar: free again, but limits set on a loose button are left alone.
        setMinimumSize(0, 0);
        setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
        sizedByBar_ = false;
    }
    updateGeometry();
}

QSize KVServicePopUpButton::sizeHint() const {
    if (bar_) return barSize();
    return QToolButton::sizeHint().expandedTo(
        {KVServicesBar::kButtonWidth + (drawLeftEdge_ ? 1 : 0), KVServicesBar::kBarHeight});
}

QSize KVServicePopUpButton::minimumSizeHint() const { return bar_ ? barSize() : QToolButton::minimumSizeHint(); }

bool KVServicePopUpButton::event(QEvent* event) {
    if (event->type() == QEvent::ParentChange) setupFrame();
    return QToolButton::event(event);
}

void KVServicePopUpButton::keyPressEvent(QKeyEvent* event) {
    Qt::KeyboardModifiers modifiers = event->modifiers() & ~Qt::KeypadModifier;
    switch (event->key()) {
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Down:
    case Qt::Key_Select:
        if (menu() && modifiers == Qt::NoModifier && !event->isAutoRepeat()) {
            showMenu();
            return;
        }
        break;
    default:
        break;
    }
    QToolButton::keyPressEvent(event);
}

void KVServicePopUpButton::resizeEvent(QResizeEvent* event) {
    // Whoever changed the size limits in the bar, the bar's size wins again.
    if (bar_ && size() != barSize()) {
        setFixedSize(barSize());
        return;
    }
    QToolButton::resizeEvent(event);
}

void KVServicePopUpButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QRect glyphBox = rect();
    if (drawLeftEdge_) {
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(rect().topLeft(), rect().bottomLeft());
        glyphBox.setLeft(1);
    }
    paintServiceButton(painter, *this, KVServiceButton::Kind::Action, glyphBox);
}

}  // namespace corvalis
