#pragma once

#include <QObject>

#include "child_link_t.h"
#include "process/supervised_process_t.h"
#include "web_t.h"

namespace torlan {

/// torlan-web as a child: one that nothing else depends on. Main thread, with an event loop.
class console_child_t : public QObject {
    Q_OBJECT

 public:
    explicit console_child_t(QObject* _parent = nullptr);

    /// settled() follows, perhaps before this returns.
    /// @param _program path of torlan-web
    /// @param _facts file in which the server tells what the page has to know
    void start(const QString& _program, const web_t& _web, const QString& _facts);
    void stop() { child.stop(); }

    /// It serves, or is on its way to do so again.
    bool is_up() const { return child.state() != process::supervised_process_t::state_t::stopped; }

 Q_SIGNALS:
    /// The first start is over, see is_up(). Once.
    void settled();
    /// Something that somebody should know; one sentence.
    void told(const QString& sentence);

 private:
    child_link_t link;
    // Ended before the link closes.
    process::supervised_process_t child;
    bool was_ready = false;
};

}  // namespace torlan
