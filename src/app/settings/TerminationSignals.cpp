#include "app/settings/TerminationSignals.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace corvalis {

namespace {

int pipeEnds[2] = {-1, -1};
struct sigaction previous[2];
constexpr int kSignals[2] = {SIGTERM, SIGINT};

void onSignal(int signal) {
    int savedErrno = errno;
    unsigned char number = static_cast<unsigned char>(signal);
    // Nothing to do when the pipe is full: a signal is already waiting to be read.
    [[maybe_unused]] ssize_t written = ::write(pipeEnds[0], &number, 1);
    errno = savedErrno;
}

}  // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, pipeEnds) != 0) return;
    notifier_ = new QSocketNotifier(pipeEnds[1], QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &TerminationSignals::readPipe);
    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    for (int i = 0; i < 2; ++i) ::sigaction(kSignals[i], &action, &previous[i]);
}

TerminationSignals::~TerminationSignals() {
    if (!notifier_) return;
    for (int i = 0; i < 2; ++i) ::sigaction(kSignals[i], &previous[i], nullptr);
    delete notifier_;
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    pipeEnds[0] = pipeEnds[1] = -1;
}

void TerminationSignals::readPipe() {
    unsigned char number = 0;
    while (::read(pipeEnds[1], &number, 1) == 1) emit received(number);
}

}  // namespace corvalis
