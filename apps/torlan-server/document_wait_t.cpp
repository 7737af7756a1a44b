#include "document_wait_t.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <utility>

#include "config_port.h"
#include "http/http_t.h"
#include "start_broken_off.h"
#include "utility/cnfserver.h"

namespace torlan {

namespace {
constexpr std::chrono::milliseconds again{200};
constexpr int answer_timeout_ms = 1000;
}  // namespace

document_wait_t::document_wait_t(quint16 _port, int _seconds, QObject* _parent)
    : QObject(_parent), port(_port), seconds(_seconds) {}

document_wait_t::~document_wait_t() = default;

base::result_of_t<QJsonObject> document_wait_t::run() {
    http_t http(utility::cnfserver::base, false);
    http.set_timeout(answer_timeout_ms);
    QElapsedTimer clock;
    clock.start();
    bool told = false;
    while (!is_given_up) {
        if (const base::result_t judged = judge_config_port(port); !judged.is_ok()) {
            return judged;
        }
        const httpresponse_t response = http.get(QString());
        if (const base::result_t judged = judge_config_port(port); !judged.is_ok()) {
            return judged;
        }
        if (response.getError() == 0) {
            return response.getData().toObject();
        }
        if (clock.elapsed() >= seconds * 1000LL) {
            return base::result_t::failed(
                QStringLiteral("The configuration server did not answer within %1 s: %2.")
                    .arg(QString::number(seconds), response.getErrorText()));
        }
        if (!std::exchange(told, true)) {
            Q_EMIT waiting(QStringLiteral("waiting up to %1 s for the configuration server at "
                                          "http://127.0.0.1:%2/")
                               .arg(seconds)
                               .arg(port));
        }
        pause();
    }
    return start_broken_off();
}

void document_wait_t::pause() {
    QEventLoop loop;
    connect(this, &document_wait_t::given_up, &loop, &QEventLoop::quit);
    QTimer::singleShot(again, &loop, &QEventLoop::quit);
    loop.exec();
}

void document_wait_t::give_up() {
    is_given_up = true;
    Q_EMIT given_up();
}

}  // namespace torlan
