#pragma once

#include <QObject>

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
    /// Something was passed to the drivers; over() follows.
    void begin();

 Q_SIGNALS:
    void over();

 private:
    void hop(int _left);
};

}  // namespace comunication
