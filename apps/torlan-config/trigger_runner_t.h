#pragma once

#include <QObject>
#include <QProcess>
#include <QTimer>

namespace torlan {

/// Runs the program that is to know of changed settings. Runs never overlap: what is asked for
/// while one is under way is one more run after it.
class trigger_runner_t : public QObject {
    Q_OBJECT

 public:
    static constexpr int default_limit_ms = 30000;

    /// @param _program a program without arguments, no shell; empty: run() does nothing
    explicit trigger_runner_t(const QString& _program, QObject* _parent = nullptr);
    ~trigger_runner_t() override;

    /// Asks for a run; returns at once.
    void run();

    /// A run that takes longer is killed.
    void set_limit(int _limit_ms) { limit.setInterval(_limit_ms); }

 Q_SIGNALS:
    /// A run is over; false when the program did not start, failed or was killed.
    void ran(bool _success);

 private:
    void start();
    void on_end(bool _success);

    const QString program;
    QProcess process;
    QTimer limit;
    bool is_asked_again = false;
};

}  // namespace torlan
