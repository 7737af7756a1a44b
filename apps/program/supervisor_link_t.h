#pragma once

#include <QObject>

class QCommandLineParser;
class QSocketNotifier;

namespace torlan {

/// What ties a program to the supervisor that started it: the other end of a socket that nobody
/// else has. The program says there when it is ready, and hears when the supervisor has ended,
/// whatever ended it. One that nobody supervises has a link that says nothing. Main thread.
class supervisor_link_t : public QObject {
    Q_OBJECT

 public:
    /// @p _descriptor of a socket, owned from here on and closed to children; -1, or what is no
    /// socket: nobody supervises.
    explicit supervisor_link_t(int _descriptor, QObject* _parent = nullptr);
    ~supervisor_link_t() override;

    bool is_supervised() const { return descriptor >= 0; }
    void tell_ready() const;

 Q_SIGNALS:
    /// The supervisor has ended. Once.
    void supervisor_gone();

 private:
    void on_readable();

    int descriptor = -1;
    QSocketNotifier* notifier = nullptr;
};

/// The option by which a supervisor hands over the descriptor; not shown to people.
void add_supervisor_option(QCommandLineParser* _parser);
/// -1: not given.
int supervisor_descriptor(const QCommandLineParser& _parser);

}  // namespace torlan
