#pragma once
// An on/off switch: a rounded track with a knob that slides to the side of the
// current state. Checkable; Space toggles it when it has the focus.

#include <QAbstractButton>

namespace corvalis {

class KVSwitchControl : public QAbstractButton {
    Q_OBJECT

public:
    enum class ControlSize { Regular, Small };

    explicit KVSwitchControl(QWidget* parent = nullptr);

    void setControlSize(ControlSize size);
    ControlSize controlSize() const { return size_; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& pos) const override { return rect().contains(pos); }

private:
    ControlSize size_ = ControlSize::Regular;
};

}  // namespace corvalis
