#include "ready_probe_t.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>

#include "start_broken_off.h"

namespace torlan {

using comunication::mosquitto_client_t;
using comunication::utility::qos_t;

ready_probe_t::ready_probe_t(const settings_t& _settings, QObject* _parent)
    : QObject(_parent),
      settings(_settings),
      tree(QStringLiteral("local/api/v1/") + _settings.account) {
    limit.setSingleShot(true);
    connect(&client, &mosquitto_client_t::opened, this, [this]() {
        client.subscribe(tree + QStringLiteral("/#"), qos_t::at_least_once,
                         mosquitto_client_t::no_local);
    });
    connect(&client, &mosquitto_client_t::subscribed, this, [this]() {
        ask();
        repeat.start(settings.again);
    });
    connect(&client, &mosquitto_client_t::received, this,
            [this](const QString&, const QByteArray& _payload) {
                // Before its routes are there the API refuses every topic.
                if (QJsonDocument::fromJson(_payload).object().contains(QLatin1String("data"))) {
                    end({});
                }
            });
    connect(&client, &mosquitto_client_t::closed, this, [this](const QString& _reason) {
        end(base::result_t::failed(QStringLiteral("The API could not be asked: %1.").arg(_reason)));
    });
    connect(&repeat, &QTimer::timeout, this, &ready_probe_t::ask);
    connect(&limit, &QTimer::timeout, this, [this]() {
        end(base::result_t::failed(QStringLiteral("The API did not answer within %1 seconds.")
                                       .arg(settings.timeout.count() / 1000)));
    });
}

ready_probe_t::~ready_probe_t() = default;

base::result_t ready_probe_t::run() {
    done = false;
    limit.start(settings.timeout);
    client.open(
        {QStringLiteral("127.0.0.1"), settings.port, {}, settings.account, settings.password, {}});
    if (!done) {
        QEventLoop loop;
        connect(this, &ready_probe_t::finished, &loop, &QEventLoop::quit);
        loop.exec();
    }
    client.abandon();
    return outcome;
}

void ready_probe_t::give_up() {
    end(start_broken_off());
}

void ready_probe_t::ask() {
    client.publish({(tree + QStringLiteral("/ready/request/get/elements/objects_list")).toUtf8(),
                    "{}", qos_t::at_least_once, false});
}

void ready_probe_t::end(const base::result_t& _outcome) {
    if (done) {
        return;
    }
    done = true;
    repeat.stop();
    limit.stop();
    outcome = _outcome;
    Q_EMIT finished();
}

}  // namespace torlan
