#pragma once
// Measures start-up: the time from the process's start to the first paint of a
// window, printed as "first-frame-ms N" before the application quits.

#include <QObject>

class QWidget;

namespace corvalis {

class FirstFrameProbe : public QObject {
    Q_OBJECT

public:
    // Watches `window`; on its first paint prints the time and quits the application.
    explicit FirstFrameProbe(QWidget* window);

    // Milliseconds since the process started: from $CORVALIS_START_NS (nanoseconds
    // since the epoch, taken by whoever started us) when set, else from /proc.
    static double millisecondsSinceStart();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool seen_ = false;
};

}  // namespace corvalis
