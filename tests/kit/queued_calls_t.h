#pragma once

#include <QEvent>
#include <QObject>

namespace kit {

/// Counts what reaches an object through the event queue, as long as both live.
class queued_calls_t : public QObject {
 public:
    explicit queued_calls_t(QObject* _receiver) { _receiver->installEventFilter(this); }

    bool eventFilter(QObject*, QEvent* _event) override {
        count += _event->type() == QEvent::MetaCall ? 1 : 0;
        return false;
    }

    int count = 0;
};

}  // namespace kit
