#include "bench/cases/beside.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <thread>

namespace bench {

bool beside(const std::function<bool()>& _work) {
    QEventLoop loop;
    bool done = false;
    std::thread worker([&]() {
        done = _work();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec();
    worker.join();
    return done;
}

}  // namespace bench
