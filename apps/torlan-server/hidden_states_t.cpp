#include "hidden_states_t.h"

#include <QStringList>
#include <utility>

#include "comunication/api_topics.h"
#include "live/shown_states.h"

namespace torlan {

namespace api_topics = comunication::api_topics;
using database::live::shown_state_t;
using database::live::shown_states_t;

hidden_states_t::hidden_states_t(const database::database_t* _database,
                                 comunication::protoserver_t* _endpoint, QObject* _parent)
    : QObject(_parent), database(_database), endpoint(_endpoint), turn(this) {
    connect(&turn, &comunication::drivers_turn_t::over, this, &hidden_states_t::take_back);
}

hidden_states_t::~hidden_states_t() = default;

void hidden_states_t::take(const QList<shown_state_t>& _states) {
    waiting.insert(_states.begin(), _states.end());
    turn.begin();
}

void hidden_states_t::take_back() {
    const std::set<shown_state_t> states = std::exchange(waiting, {});
    if (states.empty()) {
        return;
    }
    std::set<QString> elements;
    for (const shown_state_t& state : states) {
        elements.insert(state.element);
    }
    const shown_states_t shown = database::live::shown_states(*database, elements, {});
    QStringList topics;
    for (const shown_state_t& state : states) {
        if (shown.count(state) == 0) {
            topics +=
                api_topics::element_state(api_topics::version_1, state.username, state.element);
        }
    }
    QMetaObject::invokeMethod(
        endpoint,
        [to = endpoint, topics]() {
            for (const QString& topic : topics) {
                to->publish_delete(topic, comunication::utility::qos_t::exactly_once, true);
            }
        },
        Qt::QueuedConnection);
}

}  // namespace torlan
