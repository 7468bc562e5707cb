#include "app/settings/FirstFrameProbe.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <ctime>

namespace corvalis {

FirstFrameProbe::FirstFrameProbe(QWidget* window) : QObject(window) { window->installEventFilter(this); }

double FirstFrameProbe::millisecondsSinceStart() {
    bool given = false;
    qint64 startNs = qEnvironmentVariable("CORVALIS_START_NS").toLongLong(&given);
    if (given) {
        auto now = std::chrono::system_clock::now().time_since_epoch();
        return static_cast<double>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() - startNs) / 1e6;
    }
    // Field 22 of /proc/self/stat: the start in clock ticks since boot (the command, field 2, may hold spaces).
    QFile stat("/proc/self/stat");
    if (!stat.open(QIODevice::ReadOnly)) return -1;
    QByteArray text = stat.readAll();
    QList<QByteArray> fields = text.mid(text.lastIndexOf(')') + 2).split(' ');
    if (fields.size() < 20) return -1;
    double startSeconds = fields[19].toDouble() / static_cast<double>(::sysconf(_SC_CLK_TCK));
    timespec boot {};
    ::clock_gettime(CLOCK_BOOTTIME, &boot);
    return (static_cast<double>(boot.tv_sec) + static_cast<double>(boot.tv_nsec) / 1e9 - startSeconds) * 1000;
}

bool FirstFrameProbe::eventFilter(QObject* watched, QEvent* event) {
    if (!seen_ && event->type() == QEvent::Paint) {
        seen_ = true;
        // Measured once the paint has been handled, so the frame is really drawn.
        QTimer::singleShot(0, this, [] {
            std::printf("first-frame-ms %.1f\n", millisecondsSinceStart());
            std::fflush(stdout);
            QCoreApplication::quit();
        });
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace corvalis
