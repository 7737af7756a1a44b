#pragma once

#include <QObject>

class QSocketNotifier;

namespace torlan {

/// Turns SIGINT and SIGTERM into a Qt signal. One for each process, as long as it runs.
class signal_watch_t : public QObject {
    Q_OBJECT

 public:
    explicit signal_watch_t(QObject* _parent = nullptr);
    ~signal_watch_t() override;

 Q_SIGNALS:
    /// At the first signal.
    void asked_to_stop();

 private:
    QSocketNotifier* notifier = nullptr;
};

}  // namespace torlan
