#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>

namespace torlan {

/// Says when retained states that a withdrawn grant has left behind can be cleared.
///
/// While a driver's debounce of access changes runs it deletes nothing, so what was withdrawn in
/// that time is looked at again once it must be over.
class retained_sweep_t : public QObject {
    Q_OBJECT

 public:
    /// The driver's 10 s and a margin.
    static constexpr std::chrono::milliseconds after_debounce{11'000};

    explicit retained_sweep_t(std::chrono::milliseconds _interval = after_debounce,
                              QObject* _parent = nullptr);
    ~retained_sweep_t() override;

 public Q_SLOTS:
    /// Something changed: due() follows one interval after the last change, and no later than three
    /// after the first.
    void trigger();

 Q_SIGNALS:
    void due();

 private:
    void tell();

    QTimer timer;
    QTimer latest;
};

}  // namespace torlan
