#pragma once
// The bar of small buttons under a list: add (+), remove (−) and an action
// pop-up, drawn as one joined strip.

#include <QToolButton>
#include <QWidget>

#include "controls/KVServicePopUpButton.h"

class QMenu;
class QPainter;

namespace corvalis {

// One button of the bar: fixed size, drawn flat inside the strip.
class KVServiceButton : public QToolButton {
    Q_OBJECT

public:
    enum class Kind { Add, Remove, Action };

    KVServiceButton(Kind kind, QWidget* parent = nullptr);
    Kind kind() const { return kind_; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Kind kind_;
};

// Draws a button of the strip into `box`: the pressed shade, its glyph, the line that
// parts it from the next button and the focus ring. Shared by the bar's plain buttons
// and its pop-up.
void paintServiceButton(QPainter& painter, QToolButton& button, KVServiceButton::Kind kind, const QRect& box);

class KVServicesBar : public QWidget {
    Q_OBJECT

public:
    explicit KVServicesBar(QWidget* parent = nullptr);

    KVServiceButton* addButton() const { return add_; }
    KVServiceButton* removeButton() const { return remove_; }
    KVServicePopUpButton* actionButton() const { return action_; }
    // The add button pops up this menu instead of acting directly (null: it just clicks).
    void setAddMenu(QMenu* menu);
    void setActionMenu(QMenu* menu);

    static constexpr int kButtonWidth = 28;
    static constexpr int kBarHeight = 23;
    int buttonWidth() const { return kButtonWidth; }
    int bottomBarHeight() const { return kBarHeight; }

    // Set when the bar lies along its container's bottom border, so that its
    // pop-ups stop one pixel short of that border instead of painting over it.
    bool isEmbeddedAtBottom() const { return embeddedAtBottom_; }
    void setEmbeddedAtBottom(bool embedded);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    // Before the buttons: the pop-up reads it while the bar makes it.
    bool embeddedAtBottom_ = false;
    KVServiceButton* add_;
    KVServiceButton* remove_;
    KVServicePopUpButton* action_;
};

}  // namespace corvalis
