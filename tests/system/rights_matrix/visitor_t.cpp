#include "system/rights_matrix/visitor_t.h"

#include <QDeadlineTimer>

namespace matrix {

using kit::raw_mqtt_t;

visitor_t::visitor_t(const visit_plan_t& _plan, const ports_t& _ports, warden_t* _warden,
                     tally_t* _tally)
    : plan(_plan), warden(*_warden), ports(_ports), tally(*_tally) {}

QByteArray visitor_t::new_id(const char* _what) const {
    static int count = 0;
    // Versions before 5 know identifiers of 23 letters.
    return QByteArray(_what) + '-' + QByteArray::number(++count);
}

std::unique_ptr<raw_mqtt_t> visitor_t::device(const QByteArray& _id,
                                              const kit::raw_connect_t& _as) const {
    kit::raw_connect_t as = _as;
    as.name = plan.user.toLatin1();
    as.password = plan.password.toLatin1();
    as.id = _id;
    as.version = plan.door.version;
    // Whose password has to wait for its turn, or whose former session has to go, is to come again.
    const QDeadlineTimer limit(10'000);
    while (!limit.hasExpired()) {
        auto made =
            std::make_unique<raw_mqtt_t>(plan.door.way, QString::number(ports.of(plan.door)));
        const int code = made->connect(as);
        if (code != raw_mqtt_t::closed) {
            return code == 0 ? std::move(made) : nullptr;
        }
    }
    return nullptr;
}

bool visitor_t::come() {
    client = device(new_id("first"));
    return client && client->subscribe(own(plan.user, "#"), 2) < 128 && settle(*client, plan.user);
}

void visitor_t::note(path_t _path, const element_t& _element, outcome_t _seen) {
    tally.note({plan.right, QString::fromLatin1(_element.id), _path, plan.door, plan.moment,
                _element.is_hidden},
               _seen);
}

void visitor_t::note(path_t _path, outcome_t _seen) {
    tally.note({plan.right, {}, _path, plan.door, plan.moment}, _seen);
}

void visitor_t::miss(const char* _what) {
    tally.miss(QStringLiteral("%1 of %2, %3, %4")
                   .arg(QLatin1String(_what), plan.user, plan.door.name(), plan.moment));
}

void visitor_t::note_writes(path_t _path, const QList<QJsonObject>& _answers, const mark_t& _mark) {
    const QSet<QByteArray> reached = warden.reached_by(_mark);
    for (qsizetype index = 0; index < elements().size(); ++index) {
        const element_t& element = elements()[index];
        const QJsonObject& answer = _answers.value(index);
        const bool is_taken = answer.contains(QLatin1String("functions"));
        const bool is_refused = answer.contains(QLatin1String("error"));
        // The answer alone tells where a write can have no effect.
        const bool is_allowed = element.takes_writes ? reached.contains(element.id) : is_taken;
        note(_path, element,
             is_allowed   ? outcome_t::allowed
             : is_refused ? outcome_t::refused
                          : outcome_t::silent);
    }
}

}  // namespace matrix
