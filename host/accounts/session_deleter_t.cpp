#include "accounts/session_deleter_t.h"

#include <QTimer>

namespace accounts {

using comunication::mosquitto_client_t;

namespace {
constexpr int at_once = 4;
}  // namespace

session_deleter_t::session_deleter_t(QObject* _parent) : QObject(_parent) {
    for (int i = 0; i < at_once; ++i) {
        clients.push_back(std::make_unique<mosquitto_client_t>());
        mosquitto_client_t* const client = clients.back().get();
        free.append(client);
        connect(client, &mosquitto_client_t::opened, this, [client]() { client->close(false); });
        connect(client, &mosquitto_client_t::closed, this, [this, client]() {
            // Not in this slot: it may be run before open() has returned.
            QMetaObject::invokeMethod(
                this, [this, client, of = round]() { finish(client, of); }, Qt::QueuedConnection);
        });
    }
}

session_deleter_t::~session_deleter_t() = default;

void session_deleter_t::add(const QStringList& _ids) {
    for (const QString& id : _ids) {
        if (!id.isEmpty() && waiting.size() < most_waiting && !known.contains(id)) {
            known.insert(id);
            waiting.enqueue(id);
        }
    }
    while (!free.isEmpty() && !waiting.isEmpty()) {
        next(free.takeLast());
    }
}

void session_deleter_t::stop() {
    ++round;
    waiting.clear();
    known.clear();
    free.clear();
    busy = 0;
    for (const auto& client : clients) {
        client->abandon();
        free.append(client.get());
    }
}

void session_deleter_t::finish(mosquitto_client_t* _client, int _round) {
    if (_round == round) {
        --busy;
        next(_client);
    }
}

void session_deleter_t::next(mosquitto_client_t* _client) {
    if (waiting.isEmpty()) {
        free.append(_client);
        if (busy == 0) {
            Q_EMIT idle();
        }
        return;
    }
    settings.client_id = waiting.dequeue();
    known.remove(settings.client_id);
    ++busy;
    _client->open(settings);
}

}  // namespace accounts
