#pragma once

#include <QObject>
#include <QProcess>
#include <QTimer>

#include "base/backoff_t.h"
#include "process/child_settings_t.h"

namespace process {

/// A program as a child of the host: started, brought back when it dies, and gone when the host is
/// gone, however that ends.
///
/// When it is ready is for its owner to find out, after each launching(), and to tell by
/// set_ready(). Lives in the main thread: the kernel ends the child together with the *thread*
/// that started it.
class supervised_process_t : public QObject {
    Q_OBJECT

 public:
    enum class state_t {
        stopped,     ///< not wanted, or failed()
        starting,    ///< launched for the first time since start()
        ready,       ///< its owner has found it so
        pausing,     ///< it has ended after all, the next launch is due later
        restarting,  ///< launched once more
    };

    explicit supervised_process_t(QObject* _parent = nullptr);
    /// stop().
    ~supervised_process_t() override;

    /// Launches it, after a stop(). failed() may come before this returns.
    void start(const child_settings_t& _settings);

    QStringList arguments() const { return settings.arguments; }
    /// Of later launches.
    void set_arguments(const QStringList& _arguments);

    /// It does what it is there for. False: nothing has been launched that could be ready, or it
    /// was known.
    bool set_ready();

    /// Ends at once one that no longer does what it is there for; died() follows.
    void kill() { child.kill(); }

    /// Ends it, blocking; bounded by the settings' stop time-out. Neither died() nor failed()
    /// follows.
    void stop();

    state_t state() const { return now; }
    /// How the last one ended; nothing: by a signal.
    std::optional<int> exit_code() const;
    /// 0: none.
    qint64 process_id() const { return child.processId(); }

 Q_SIGNALS:
    /// It is about to be started, for the first time or once more: it finds its files as they are
    /// now or later.
    void launching();
    /// It has a process id now; what it runs is another matter.
    void launched();
    /// A line that it wrote, see child_settings_t::words. A very long one comes in pieces.
    void said(const QString& words);
    /// It has ended after it had once been ready, and is started again after a pause.
    /// @p was_ready: in this life of it.
    void died(bool was_ready);
    /// It could not be started, or ended before it was ever ready. @p last_words: what it said
    /// last, or why; perhaps empty.
    void failed(const QString& last_words);

 private:
    bool is_launched() const { return now == state_t::starting || now == state_t::restarting; }
    void launch(state_t _state);
    void on_late();
    void on_ended();
    void read_output(bool _to_the_end);

    child_settings_t settings;
    QProcess child;
    QTimer limit;    ///< of a start
    QTimer restart;  ///< until the next launch
    base::backoff_t backoff;
    QString last_words;
    state_t now = state_t::stopped;
};

}  // namespace process
