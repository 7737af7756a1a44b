#include "broker/broker_rights_check_t.h"

#include <QEventLoop>
#include <utility>

#include "base/random_hex.h"
#include "comunication/api_topics.h"

namespace broker {

using base::result_t;
namespace api_topics = comunication::api_topics;
using comunication::mosquitto_client_t;
using comunication::utility::qos_t;

broker_rights_check_t::broker_rights_check_t(const rights_check_settings_t& _settings,
                                             QObject* _parent)
    : QObject(_parent),
      settings(_settings),
      token(base::random_hex()),
      own(api_topics::user_root(api_topics::version_1, _settings.probe_account)),
      other(api_topics::user_root(api_topics::version_1, QStringLiteral("other-") + token)),
      forbidden(forbidden_topics_t::below(own, other, token)),
      limit(this),
      host(this),
      probe(this),
      anonymous(this) {
    limit.setSingleShot(true);
    set_up_connections();
}

broker_rights_check_t::~broker_rights_check_t() = default;

void broker_rights_check_t::set_up_connections() {
    connect(&limit, &QTimer::timeout, this, &broker_rights_check_t::on_limit);
    connect(&host, &mosquitto_client_t::opened, this, [this]() {
        host.subscribe(QStringLiteral("#"), qos_t::at_least_once, mosquitto_client_t::no_local);
    });
    connect(&host, &mosquitto_client_t::subscribed, this,
            [this](int, bool _accepted) { on_host_subscribed(_accepted); });
    connect(&host, &mosquitto_client_t::delivered, this, &broker_rights_check_t::on_host_delivered);
    connect(&host, &mosquitto_client_t::received, this, &broker_rights_check_t::on_host_received);
    connect(&probe, &mosquitto_client_t::received, this, &broker_rights_check_t::on_probe_received);
    connect(&probe, &mosquitto_client_t::opened, this, [this]() {
        for (const QString& filter :
             {QStringLiteral("#"), QStringLiteral("+/#"), other + QStringLiteral("/#"),
              QStringLiteral("$SYS/#"), QStringLiteral("$share/check/#"),
              own + QStringLiteral("/#")}) {
            awaited += probe.subscribe(filter, qos_t::at_least_once, 0) != 0 ? 1 : 0;
        }
    });
    connect(&probe, &mosquitto_client_t::subscribed, this, [this]() { on_probe_subscribed(); });
    connect(&host, &mosquitto_client_t::closed, this, [this](const QString& _reason) {
        on_closed(QStringLiteral("the host's account"), _reason);
        conclude();
    });
    connect(&probe, &mosquitto_client_t::closed, this, [this](const QString& _reason) {
        on_closed(QStringLiteral("the probe's account"), _reason);
    });
    connect(&anonymous, &mosquitto_client_t::opened, this,
            [this]() { fail(QStringLiteral("The broker lets anonymous clients in.")); });
    connect(&anonymous, &mosquitto_client_t::closed, this,
            [this]() { meet_fence(anonymous_refused); });
}

void broker_rights_check_t::start() {
    limit.start(settings.timeout);
    // By the probe's name, so that reports tell it from a stranger.
    anonymous.open(
        {settings.host, settings.port, settings.probe_account, {}, {}, settings.ca_file});
    comunication::client_settings_t own_way{settings.host_socket,   0, {}, settings.host_account,
                                            settings.host_password, {}};
    own_way.process = settings.broker_process;
    host.open(own_way);
}

result_t broker_rights_check_t::run() {
    result_t result;
    QEventLoop loop;
    // Queued: it may be over before the loop runs.
    connect(
        this, &broker_rights_check_t::finished, &loop,
        [&result, &loop](const result_t& _verdict) {
            result = _verdict;
            loop.quit();
        },
        Qt::QueuedConnection);
    start();
    loop.exec();
    return result;
}

void broker_rights_check_t::on_limit() {
    const bool late = stage == stage_t::ending;
    fail(QStringLiteral("The broker did not answer the check of its rights in time."));
    end(failure);
    if (late || !host.is_open()) {
        host.abandon();
        conclude();
    } else {
        limit.start(settings.timeout);  // for taking back what was retained
    }
}

void broker_rights_check_t::on_host_subscribed(bool _accepted) {
    if (!_accepted) {
        fail(QStringLiteral("The broker does not let the host read every topic."));
        return;
    }
    // Lies on the broker before the probe subscribes.
    send(host, forbidden.foreign_status, true);
}

void broker_rights_check_t::on_host_delivered(int _id) {
    if (stage == stage_t::ending && clearing.remove(_id) && clearing.isEmpty()) {
        host.close(false);
    }
    if (stage == stage_t::preparing) {
        stage = stage_t::probing;
        probe.open({settings.host,
                    settings.port,
                    {},
                    settings.probe_account,
                    settings.probe_password,
                    settings.ca_file});
    }
}

void broker_rights_check_t::on_probe_subscribed() {
    if (--awaited > 0) {
        return;
    }
    for (const QString& topic : forbidden.unreadable()) {
        send(host, topic, false);
    }
    send(host, own + QStringLiteral("/status/") + token, false);
    stage = stage_t::fenced;
    for (const QString& topic : forbidden.all()) {
        send(probe, topic, false);
        send(probe, topic, true);
    }
    if (!settings.connection_topic.isEmpty()) {
        send(probe, settings.connection_topic, false);
    }
    send(probe, own + QStringLiteral("/check/request/") + token, false);
}

void broker_rights_check_t::on_host_received(const QString& _topic, const QByteArray& _payload) {
    if (!_payload.contains(token.toLatin1())) {
        return;
    }
    if (_topic == own + QStringLiteral("/check/request/") + token) {
        meet_fence(host_fence);
    } else {
        fail(QStringLiteral("The broker lets an API user write %1.").arg(_topic));
    }
}

void broker_rights_check_t::on_probe_received(const QString& _topic) {
    if (_topic == own + QStringLiteral("/status/") + token) {
        meet_fence(probe_fence);
    } else if (!_topic.startsWith(own + QLatin1Char('/')) && _topic != settings.connection_topic) {
        fail(QStringLiteral("The broker lets an API user read %1.").arg(_topic));
    }
}

void broker_rights_check_t::meet_fence(bool& _fence) {
    _fence = true;
    if (host_fence && !failure.is_ok()) {
        end(failure);
    } else if (host_fence && probe_fence && anonymous_refused) {
        end({});
    }
}

void broker_rights_check_t::on_closed(const QString& _who, const QString& _reason) {
    fail(QStringLiteral("The broker does not let %1 in: %2.").arg(_who, _reason));
    end(failure);
}

void broker_rights_check_t::send(mosquitto_client_t& _client, const QString& _topic, bool _retain) {
    _client.publish({_topic.toUtf8(), "{\"check\":\"" + token.toLatin1() + "\"}",
                     qos_t::at_least_once, _retain});
}

void broker_rights_check_t::fail(const QString& _sentence) {
    if (failure.is_ok()) {
        failure = result_t::failed(_sentence);
    }
    // What the probe has sent and the broker not yet read could be retained after the clearing.
    if (stage != stage_t::fenced || host_fence) {
        end(failure);
    }
}

void broker_rights_check_t::end(const result_t& _verdict) {
    if (stage == stage_t::ending || stage == stage_t::over) {
        return;
    }
    stage = stage_t::ending;
    verdict = _verdict;
    probe.abandon();
    anonymous.abandon();
    if (!host.is_open()) {
        conclude();
        return;
    }
    // What was retained goes before the host does.
    for (const QString& topic : forbidden.all()) {
        clearing.insert(host.publish({topic.toUtf8(), {}, qos_t::at_least_once, true}));
    }
    clearing.remove(0);
}

void broker_rights_check_t::conclude() {
    limit.stop();
    if (std::exchange(stage, stage_t::over) != stage_t::over) {
        Q_EMIT finished(verdict);
    }
}

}  // namespace broker
