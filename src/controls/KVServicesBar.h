#pragma once
// The bar of small buttons under a list: add (+), remove (−) and an action
// pop-up, drawn as one joined strip.

#include <QToolButton>
#include <QWidget>

class QMenu;

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

class KVServicesBar : public QWidget {
    Q_OBJECT

public:
    explicit KVServicesBar(QWidget* parent = nullptr);

    KVServiceButton* addButton() const { return add_; }
    KVServiceButton* removeButton() const { return remove_; }
    KVServiceButton* actionButton() const { return action_; }
    // The add button pops up this menu instead of acting directly (null: it just clicks).
    void setAddMenu(QMenu* menu);
    void setActionMenu(QMenu* menu);

    static constexpr int kButtonWidth = 28;
    static constexpr int kBarHeight = 23;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    KVServiceButton* add_;
    KVServiceButton* remove_;
    KVServiceButton* action_;
};

}  // namespace corvalis
