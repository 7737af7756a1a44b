#pragma once

#include <QObject>

class QSocketNotifier;

namespace torlan {

/// The supervisor's end of the socket between it and a child, for all the child's lives: the child
/// tells there that it is ready, and finds it closed when the supervisor has ended.
class child_link_t : public QObject {
    Q_OBJECT

 public:
    explicit child_link_t(QObject* _parent = nullptr);
    ~child_link_t() override;

    /// The child's end, which it has to inherit; -1: there is none.
    int descriptor() const { return ends[1]; }

    /// Tells what a child has said and nobody has heard yet, now.
    void read_all();

 Q_SIGNALS:
    /// The process of this number says that it is ready.
    void ready(qint64 process_id);

 private:
    bool read();

    int ends[2] = {-1, -1};  ///< ours, the child's; both closed to what it does not inherit
    QSocketNotifier* notifier = nullptr;
};

}  // namespace torlan
