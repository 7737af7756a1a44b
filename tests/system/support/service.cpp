#include "system/support/service.h"

#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QTcpSocket>

#include "kit/mqtt_client_t.h"
#include "kit/wait_until.h"
#include "system/support/api_user.h"
#include "system/support/shown_to_user.h"

namespace support {

namespace {

constexpr int answer_ms = 2'000;

const auto lamp = QStringLiteral("e-kitchen-ceiling");

QString sample_password(const QString& _user) {
    return QStringLiteral("sample-") + _user;
}

QString wrong_at_once(const run_process_t& _run, const QString& _user) {
    const QString password = sample_password(_user);
    const QSet<QByteArray> due = states_due(_run.data(), _user);
    const auto retained = states_retained(_run.port(), _user, password);
    const QList<QByteArray> topics = retained.keys();
    kit::mqtt_client_t user;
    if (user.sign_in(_run.port(), _user, password) != 0 ||
        !user.subscribe(QStringLiteral("local/api/v1/%1/me/#").arg(_user))) {
        return _user + " is not let in";
    }
    const QJsonObject all = user.request(request_topic(_user, "get"))["data"].toObject();
    for (const QByteArray& topic : topics) {
        const QString element = QString::fromUtf8(topic).section('/', -1);
        const QJsonObject functions =
            QJsonDocument::fromJson(retained[topic])["data"]["functions"].toObject();
        const QJsonObject read = all[element]["functions"].toObject();
        for (auto function = functions.begin(); function != functions.end(); ++function) {
            if (read[function.key()] != function.value()) {
                return topic + ": another value of " + function.key();
            }
        }
    }
    // An element without a function has no state.
    QSet<QByteArray> read;
    const QStringList elements = all.keys();
    for (const QString& element : elements) {
        read += state_topic(_user, element).toUtf8();
    }
    const QSet<QByteArray> shown(topics.begin(), topics.end());
    if (shown != read || !due.contains(shown)) {
        return QStringLiteral("%1: %2 states, %3 elements read, %4 in the database")
            .arg(_user)
            .arg(shown.size())
            .arg(read.size())
            .arg(due.size());
    }
    return {};
}

}  // namespace

bool is_user_served(const run_process_t& _run, int _limit_ms) {
    const QDeadlineTimer limit(_limit_ms);
    while (!limit.hasExpired()) {
        kit::mqtt_client_t alice;
        if (alice.sign_in(_run.port(), "alice", sample_password("alice")) == 0 &&
            alice.subscribe("local/api/v1/alice/me/#") &&
            alice.publish(request_topic("alice", "get", lamp), "{}") == 0 &&
            alice.wait_for("local/api/v1/alice/me/status/get/elements/objects_list/" + lamp,
                           answer_ms)) {
            return true;
        }
    }
    return false;
}

bool is_config_served(const run_process_t& _run, int _limit_ms) {
    return kit::wait_until(
        [&_run]() {
            return ask(_run.config_port(), "GET /static HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n")
                .startsWith("HTTP/1.1 200");
        },
        _limit_ms);
}

QByteArray ask(quint16 _port, const QByteArray& _request, const std::function<void()>& _asked) {
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", _port);
    if (socket.waitForConnected()) {
        socket.write(_request);
        socket.waitForBytesWritten();
    }
    _asked();
    while (!socket.canReadLine() && socket.waitForReadyRead()) {
    }
    return socket.readLine();
}

QString wrong_for(const run_process_t& _run, const QString& _user, int _limit_ms) {
    QString wrong;
    kit::wait_until([&]() { return (wrong = wrong_at_once(_run, _user)).isEmpty(); }, _limit_ms);
    return wrong;
}

}  // namespace support
