#pragma once

#include <QObject>
#include <deque>

namespace comunication {

/// Finds out when the drivers have worked off what was passed to them, without knowing them: their
/// slots are queued on this object's thread, a request takes few hops there until its answer is
/// posted to the endpoint, and this object hops behind it.
///
/// Lives in the thread of the drivers.
class drivers_turn_t : public QObject {
    Q_OBJECT

 public:
    explicit drivers_turn_t(QObject* _parent = nullptr);
    ~drivers_turn_t() override;

 public Q_SLOTS:
    /// Something was passed to the drivers; over() follows, in the order of the begins.
    void begin();
    /// The same of what reads one element: nothing follows the driver's answer. Not for lists:
    /// their answers are work for the endpoint, and others come in between.
    void begin_read();

 Q_SIGNALS:
    void over();

 private:
    void add(int _hops);
    void hop(quint64 _turn, int _left);
    void end(quint64 _turn);

    std::deque<bool> ended;  ///< of the turns under way, the oldest first
    quint64 oldest = 0;      ///< number of that one
};

}  // namespace comunication
