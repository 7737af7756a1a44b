#include "hidden_states_t.h"

#include <QStringList>
#include <utility>

#include "comunication/api_topics.h"
#include "live/shown_states.h"

namespace torlan {

namespace api_topics = comunication::api_topics;
using database::live::shown_state_t;

namespace {

/// A small part of what the endpoint's queue holds.
constexpr int deleted_at_a_time = 1'024;

/// No identifier holds it.
const QLatin1Char between('/');

}  // namespace

hidden_states_t::hidden_states_t(const database::database_t* _database,
                                 comunication::protoserver_t* _endpoint, QObject* _parent)
    : QObject(_parent),
      database(_database),
      endpoint(_endpoint),
      turn(this),
      deleted([this](const QString& _name) { take_back(_name); }, deleted_at_a_time) {
    connect(&turn, &comunication::drivers_turn_t::over, this, [this]() { take_back(); });
}

hidden_states_t::~hidden_states_t() = default;

void hidden_states_t::take(const QList<shown_state_t>& _states) {
    waiting.insert(_states.begin(), _states.end());
    turn.begin();
}

void hidden_states_t::take_back() {
    QStringList names;
    for (const shown_state_t& state : std::exchange(waiting, {})) {
        names += state.username + between + state.element;
    }
    deleted.add(names);
}

void hidden_states_t::take_back(const QString& _name) {
    const shown_state_t state{_name.section(between, 0, 0), _name.section(between, 1)};
    if (database::live::is_shown(*database, state)) {
        return;
    }
    const QString topic =
        api_topics::element_state(api_topics::version_1, state.username, state.element);
    QMetaObject::invokeMethod(
        endpoint,
        [to = endpoint, topic]() {
            to->publish_delete(topic, comunication::utility::qos_t::exactly_once, true);
        },
        Qt::QueuedConnection);
}

}  // namespace torlan
