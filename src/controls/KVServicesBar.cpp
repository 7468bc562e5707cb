#include "controls/KVServicesBar.h"

#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

#include "controls/KVServicePopUpButton.h"
#include "controls/LocalizedText.h"

namespace corvalis {

namespace {

// The add, remove and action glyphs, drawn with the text colour so they follow the theme.
void drawGlyph(QPainter& painter, KVServiceButton::Kind kind, const QRectF& box, const QColor& color) {
    QPointF c = box.center();
    painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap));
    switch (kind) {
    case KVServiceButton::Kind::Add:
        painter.drawLine(QPointF(c.x() - 4.5, c.y()), QPointF(c.x() + 4.5, c.y()));
        painter.drawLine(QPointF(c.x(), c.y() - 4.5), QPointF(c.x(), c.y() + 4.5));
        break;
    case KVServiceButton::Kind::Remove:
        painter.drawLine(QPointF(c.x() - 4.5, c.y()), QPointF(c.x() + 4.5, c.y()));
        break;
    case KVServiceButton::Kind::Action: {
        // A cog: a ring with six teeth, then a small down arrow for the menu.
        QPointF cog(c.x() - 3, c.y());
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(cog, 3.2, 3.2);
        for (int i = 0; i < 6; ++i) {
            qreal angle = i * M_PI / 3;
            painter.drawLine(cog + QPointF(std::cos(angle) * 3.6, std::sin(angle) * 3.6),
                             cog + QPointF(std::cos(angle) * 5.2, std::sin(angle) * 5.2));
        }
        QPainterPath arrow;
        arrow.moveTo(c.x() + 5, c.y() - 1);
        arrow.lineTo(c.x() + 9, c.y() - 1);
        arrow.lineTo(c.x() + 7, c.y() + 1.5);
        arrow.closeSubpath();
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawPath(arrow);
        break;
    }
    }
}

}  // namespace

KVServiceButton::KVServiceButton(Kind kind, QWidget* parent) : QToolButton(parent), kind_(kind) {
    setAutoRaise(true);
    setFocusPolicy(Qt::TabFocus);
    const char* names[] = {"AddButton", "RemoveButton", "ActionButton"};
    setAccessibleName(localized(names[static_cast<int>(kind)]));
    setToolTip(accessibleName());
}

QSize KVServiceButton::sizeHint() const { return {KVServicesBar::kButtonWidth, KVServicesBar::kBarHeight}; }

void paintServiceButton(QPainter& painter, QToolButton& button, KVServiceButton::Kind kind, const QRect& box) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& palette = button.palette();
    if (button.isDown() || (button.menu() && button.menu()->isVisible())) painter.fillRect(box, palette.color(QPalette::Mid));
    QColor color = palette.color(button.isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText);
    drawGlyph(painter, kind, box, color);
    painter.setPen(palette.color(QPalette::Mid));
    painter.drawLine(box.topRight(), box.bottomRight());
    if (button.hasFocus()) {
        painter.setPen(QPen(palette.color(QPalette::Highlight), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(box).adjusted(1, 1, -1.5, -1.5));
    }
    painter.restore();
}

void KVServiceButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintServiceButton(painter, *this, kind_, rect());
}

KVServicesBar::KVServicesBar(QWidget* parent)
    : QWidget(parent),
      add_(new KVServiceButton(KVServiceButton::Kind::Add, this)),
      remove_(new KVServiceButton(KVServiceButton::Kind::Remove, this)),
      action_(new KVServicePopUpButton(this)) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(add_);
    layout->addWidget(remove_);
    layout->addWidget(action_);
    layout->addStretch(1);
    action_->hide();  // shown once it has a menu
    setFixedHeight(kBarHeight);
}

void KVServicesBar::setAddMenu(QMenu* menu) {
    add_->setMenu(menu);
    add_->setPopupMode(QToolButton::InstantPopup);
}

void KVServicesBar::setEmbeddedAtBottom(bool embedded) {
    if (embedded == embeddedAtBottom_) return;
    embeddedAtBottom_ = embedded;
    for (auto* popUp : findChildren<KVServicePopUpButton*>(QString(), Qt::FindDirectChildrenOnly)) popUp->updateFrame();
}

void KVServicesBar::setActionMenu(QMenu* menu) {
    action_->setMenu(menu);
    action_->setVisible(menu != nullptr);
}

void KVServicesBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Button));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

}  // namespace corvalis
