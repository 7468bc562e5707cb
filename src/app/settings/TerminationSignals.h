#pragma once
// SIGTERM and SIGINT (the session ending, Ctrl+C in a terminal) as a Qt signal.
// The handler only writes the signal's number into a pipe; the event loop reads
// it there, since nothing else may run inside a signal handler.

#include <QObject>

class QSocketNotifier;

namespace corvalis {

class TerminationSignals : public QObject {
    Q_OBJECT

public:
    // Catches both signals until destroyed; then the previous handlers are back. One at a time.
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

signals:
    void received(int signal);

private:
    void readPipe();

    QSocketNotifier* notifier_ = nullptr;
};

}  // namespace corvalis
