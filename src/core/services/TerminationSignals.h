#pragma once

#include <QObject>

class QSocketNotifier;

// Turns SIGTERM and SIGINT into a Qt signal on the event loop (through a
// self-pipe), so that a logout, `kill` or Ctrl+C ends the program through its
// normal shut-down. One instance at a time; the previous handlers come back
// when it is destroyed.
class TerminationSignals : public QObject
{
    Q_OBJECT
public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

signals:
    void received(int signalNumber);

private:
    void readPipe();

    QSocketNotifier* m_notifier = nullptr;
};
