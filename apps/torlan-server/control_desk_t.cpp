#include "control_desk_t.h"

#include "connection_topic.h"
#include "control/protocol.h"
#include "logs/log_line.h"

#include <utility>

namespace torlan {

namespace {

constexpr const char* source = "apps/torlan-server/control_desk_t";

/// Why the broker does not follow; empty: it does.
QString broker_lag(const control_desk_t::parts_t& _parts) {
    if (!_parts.broker->is_listening()) {
        return QStringLiteral("the MQTT broker does not run.");
    }
    return _parts.accounts->is_effective()
               ? QString()
               : QStringLiteral("the MQTT broker has not confirmed its users.");
}

}  // namespace

control_desk_t::control_desk_t(const utility::logs::error_ring_t* _errors, QObject* _parent)
    : QObject(_parent), effects(this), bus(this), report(_errors), server(this) {
    using control::asker_t;
    server.set_answer(
        control::ask_effective(),
        [this](asker_t* _asker, const QJsonObject& _question) { effects.take(_asker, _question); });
    server.set_answer(control::ask_status(),
                      [this](asker_t* _asker, const QJsonObject&) { show_status(_asker); });
    server.set_answer(control::ask_retained(),
                      [this](asker_t* _asker, const QJsonObject&) { check_retained(_asker); });
    server.set_answer(control::ask_bus(), [this](asker_t* _asker, const QJsonObject& _question) {
        if (report.is_started()) {
            bus.take(_asker, _question);
        } else {
            _asker->refuse(QStringLiteral("The server is still starting."));
        }
    });
}

control_desk_t::~control_desk_t() {
    close();
}

void control_desk_t::open(const QString& _folder) {
    if (const base::result_t opened = server.open(_folder); !opened.is_ok()) {
        utility::log_line(opened.error, 2, "open", source, __LINE__);
    }
}

void control_desk_t::follow(const parts_t& _parts) {
    const auto lag = [_parts](const database::store::change_mark_t& _mark) {
        const QString why = _parts.live->lag(_mark);
        return why.isEmpty() ? broker_lag(_parts) : why;
    };
    effects.follow(lag, _parts.database, _parts.endpoint);
    bus.follow(_parts.bus);
    parts = _parts;
    report.set_parts(status_report_t::parts_t{.database = _parts.database,
                                              .broker = _parts.broker,
                                              .accounts = _parts.accounts,
                                              .counts = &_parts.endpoint->counters()});
}

void control_desk_t::show_status(control::asker_t* _asker) const {
    QJsonObject status = report.json();
    if (const QJsonObject state = bus.state(); !state.isEmpty()) {
        status.insert(QStringLiteral("bus"), state);
    }
    _asker->send(status);
    _asker->finish();
}

void control_desk_t::check_retained(control::asker_t* _asker) {
    if (!parts || connection_topic(*parts->database).isEmpty()) {
        _asker->refuse(QStringLiteral("The server is still starting, or has no topic."));
        return;
    }
    if (retained) {
        _asker->refuse(QStringLiteral("Somebody else has this looked at."));
        return;
    }
    comunication::client_settings_t connection;
    connection.host = parts->broker->host_socket();
    connection.port = 0;
    connection.process = parts->broker->process_id();
    connection.username = broker::broker_settings_t().host_account;
    connection.password = parts->broker->host_password();
    retained =
        new retained_check_t(parts->database, connection, connection_topic(*parts->database), this);
    // Queued: it is told while the check is busy.
    connect(
        retained, &retained_check_t::finished, this,
        [this, asker = QPointer<control::asker_t>(_asker)](const QJsonObject& _answer) {
            if (asker) {
                asker->send(_answer);
                asker->finish();
            }
            if (retained) {
                std::exchange(retained, nullptr)->deleteLater();
            }
        },
        Qt::QueuedConnection);
    retained->start();
}

void control_desk_t::close() {
    delete retained;
    parts.reset();
    effects.end_following();
    bus.follow(nullptr);
    report.set_parts(std::nullopt);
    server.close();
}

}  // namespace torlan
