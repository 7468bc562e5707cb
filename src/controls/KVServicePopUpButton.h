#pragma once
// The action pop-up of a services bar. Sitting directly in a bar it takes the bar's
// fixed button size whatever its layout or caller asks; anywhere else it is an
// ordinary, resizable tool button that pops up its menu.

#include <QToolButton>

namespace corvalis {

class KVServicesBar;

class KVServicePopUpButton : public QToolButton {
    Q_OBJECT

public:
    explicit KVServicePopUpButton(QWidget* parent = nullptr);

    // The bar this button is a direct child of, or null.
    KVServicesBar* servicesBar() const { return bar_; }
    bool isInServicesBar() const { return bar_ != nullptr; }

    // A line on the left edge, for a pop-up that follows a control without its own
    // right edge; the line widens the button by one pixel.
    bool drawLeftEdge() const { return drawLeftEdge_; }
    void setDrawLeftEdge(bool draw);

    // The size the bar gives its pop-up, or an invalid size outside a bar.
    QSize barSize() const;
    // Applies the size again; the bar calls it when its own measures change.
    void updateFrame();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void setupFrame();

    KVServicesBar* bar_ = nullptr;
    bool drawLeftEdge_ = false;
    bool sizedByBar_ = false;
};

}  // namespace corvalis
