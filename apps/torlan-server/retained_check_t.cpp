#include "retained_check_t.h"

#include <QJsonArray>
#include <utility>

#include "comunication/api_topics.h"
#include "database/element_type.h"
#include "live/shown_states.h"

namespace torlan {

using comunication::mosquitto_client_t;
using comunication::utility::qos_t;
namespace api_topics = comunication::api_topics;

namespace {

constexpr qsizetype most_topics = 3;

}  // namespace

retained_check_t::retained_check_t(const database::database_t* _database,
                                   comunication::client_settings_t _connection, QString _fence,
                                   QObject* _parent)
    : QObject(_parent),
      database(_database),
      connection(std::move(_connection)),
      fence(std::move(_fence)),
      limit(this) {
    limit.setSingleShot(true);
    connect(&limit, &QTimer::timeout, this, [this]() { end({}); });
    connect(&client, &mosquitto_client_t::opened, this, &retained_check_t::begin_user);
    connect(&client, &mosquitto_client_t::closed, this,
            [this](const QString& _reason) { end(_reason); });
    connect(&client, &mosquitto_client_t::received, this,
            [this](const QString& _topic, const QByteArray& _payload, bool, quint32 _subscription) {
                if (_topic == fence && _subscription == turn) {
                    compare();
                    begin_user();
                } else if (_topic != fence) {
                    take(_topic, _payload.isEmpty());
                }
            });
}

retained_check_t::~retained_check_t() = default;

void retained_check_t::start() {
    left = database->getPersistent()->getData()->getUsers()->getObjects().keys();
    users = left.size();
    limit.start(longest);
    client.open(connection);
}

QString retained_check_t::filter() const {
    const auto user =
        database->getPersistent()->getData()->getUsers()->getObjects().value(left.constFirst());
    return user == nullptr ? QString()
                           : api_topics::element_state(api_topics::version_1, user->getUsername(),
                                                       QStringLiteral("+"));
}

void retained_check_t::begin_user() {
    while (!left.isEmpty() && filter().isEmpty()) {
        left.removeFirst();  // gone meanwhile
        --users;
    }
    if (left.isEmpty() || expected >= most_states) {
        end({});
        return;
    }
    held.clear();
    ++turn;
    client.subscribe(filter(), qos_t::at_least_once, mosquitto_client_t::plain, turn);
    client.subscribe(fence, qos_t::at_least_once, mosquitto_client_t::plain, turn);
}

void retained_check_t::take(const QString& _topic, bool _is_empty) {
    // What changes meanwhile comes as well.
    const QString own = filter();
    if (!_topic.startsWith(own.left(own.size() - 1))) {
        return;
    }
    const QString element = _topic.mid(own.size() - 1);
    if (_is_empty) {
        held.remove(element);
    } else {
        held.insert(element);
    }
}

void retained_check_t::compare() {
    const QString own = filter();
    if (own.isEmpty()) {
        return;
    }
    client.unsubscribe(own);
    const QString root = own.left(own.size() - 1);
    const auto* const elements = database->getPersistent()->getData()->getElements();
    for (const auto& state : database::live::shown_states(*database, {}, {left.constFirst()})) {
        if (!database::element_type::is_exposed(elements->list(state.element)->getType())) {
            continue;
        }
        ++expected;
        if (!held.remove(state.element)) {
            note(root + state.element, &missing);
        }
    }
    for (const QString& element : std::as_const(held)) {
        note(root + element, &surplus);
    }
    left.removeFirst();
}

void retained_check_t::note(const QString& _topic, qint64* _count) {
    ++*_count;
    if (topics.size() < most_topics) {
        topics.append(_topic);
    }
}

void retained_check_t::end(const QString& _error) {
    if (std::exchange(is_over, true)) {
        return;
    }
    limit.stop();
    client.abandon();
    if (!_error.isEmpty()) {
        Q_EMIT finished({{QStringLiteral("error"),
                          QStringLiteral("The broker could not be asked: %1.").arg(_error)}});
        return;
    }
    Q_EMIT finished({{QStringLiteral("expected"), expected},
                     {QStringLiteral("missing"), missing},
                     {QStringLiteral("surplus"), surplus},
                     {QStringLiteral("users"), users},
                     {QStringLiteral("users_seen"), users - left.size()},
                     {QStringLiteral("topics"), QJsonArray::fromStringList(topics)}});
}

}  // namespace torlan
