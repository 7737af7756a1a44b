#pragma once

#include <QSemaphore>
#include <QThread>

#include "fakes/scripted_endpoint_t.h"
#include "kit/settle.h"

namespace fakes {

/// A scripted endpoint in a running thread of its own, as in the server.
class endpoint_thread_t {
 public:
    endpoint_thread_t() : endpoint(new scripted_endpoint_t) {
        endpoint->moveToThread(&thread);
        thread.start();
    }
    ~endpoint_thread_t() {
        release();
        thread.quit();
        thread.wait();
        delete endpoint;
    }
    Q_DISABLE_COPY_MOVE(endpoint_thread_t)

    scripted_endpoint_t* get() const { return endpoint; }
    scripted_endpoint_t* operator->() const { return endpoint; }
    QThread* where() { return &thread; }

    /// Returns when everything that was posted to the endpoint so far has run.
    void drain() {
        QMetaObject::invokeMethod(
            endpoint, [] {}, Qt::BlockingQueuedConnection);
    }

    /// Stops the endpoint's thread until release(): what is posted meanwhile stays queued.
    void hold() {
        held = true;
        QMetaObject::invokeMethod(
            endpoint,
            [this] {
                stopped.release();
                gate.acquire();
            },
            Qt::QueuedConnection);
        stopped.acquire();
    }
    void release() {
        if (held) {
            held = false;
            gate.release();
        }
    }

    /// Lets both threads' queues run empty. A message crosses at most a few times: request in,
    /// answer out, retained messages back.
    void settle() {
        for (int crossing = 0; crossing < 8; ++crossing) {
            kit::settle();
            drain();
        }
        kit::settle();
    }

 private:
    scripted_endpoint_t* endpoint;
    QThread thread;
    QSemaphore gate;
    QSemaphore stopped;
    bool held = false;
};

}  // namespace fakes
