#include "core/services/TerminationSignals.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {
int g_pipe[2] = {-1, -1}; // [0] written by the handler, [1] read on the event loop
struct sigaction g_previousTerm;
struct sigaction g_previousInt;

void onSignal(int signalNumber)
{
    const int savedErrno = errno;
    const unsigned char byte = static_cast<unsigned char>(signalNumber);
    [[maybe_unused]] const ssize_t written = ::write(g_pipe[0], &byte, 1);
    errno = savedErrno;
}
} // namespace

TerminationSignals::TerminationSignals(QObject* parent) : QObject(parent)
{
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, g_pipe) != 0) {
        g_pipe[0] = g_pipe[1] = -1;
        return;
    }
    m_notifier = new QSocketNotifier(g_pipe[1], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readPipe);

    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, &g_previousTerm);
    sigaction(SIGINT, &action, &g_previousInt);
}

TerminationSignals::~TerminationSignals()
{
    if (!m_notifier)
        return;
    sigaction(SIGTERM, &g_previousTerm, nullptr);
    sigaction(SIGINT, &g_previousInt, nullptr);
    delete m_notifier;
    ::close(g_pipe[0]);
    ::close(g_pipe[1]);
    g_pipe[0] = g_pipe[1] = -1;
}

void TerminationSignals::readPipe()
{
    unsigned char byte = 0;
    while (::read(g_pipe[1], &byte, 1) == 1)
        emit received(byte);
}
