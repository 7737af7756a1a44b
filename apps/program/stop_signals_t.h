#pragma once

#include <QObject>

class QSocketNotifier;

namespace torlan {

/// Turns SIGINT, SIGTERM, SIGQUIT and SIGHUP into a Qt signal: whoever hangs up asks for an orderly
/// end, too, unless the hang-up is ignored (nohup). One for each process, as long as it runs; main
/// thread.
class stop_signals_t : public QObject {
    Q_OBJECT

 public:
    explicit stop_signals_t(QObject* _parent = nullptr);
    ~stop_signals_t() override;

 Q_SIGNALS:
    /// At the first of them.
    void stop_asked();

 private:
    QSocketNotifier* notifier = nullptr;
};

}  // namespace torlan
