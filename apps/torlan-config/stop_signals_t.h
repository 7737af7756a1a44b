#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <memory>

/// Turns SIGTERM and SIGINT into a Qt signal; one object per program.
class stop_signals_t : public QObject {
    Q_OBJECT

 public:
    explicit stop_signals_t(QObject* _parent = nullptr);
    ~stop_signals_t() override;

 Q_SIGNALS:
    void stop_asked();

 private:
    std::unique_ptr<QSocketNotifier> notifier;
};
