#include <QJsonArray>

#include "system/rights_matrix/attempts.h"

namespace matrix {

namespace {

outcome_t outcome_of(const QJsonObject& _answer) {
    return !_answer.value(QLatin1String("data")).toObject().isEmpty() ? outcome_t::allowed
           : _answer.contains(QLatin1String("error"))                 ? outcome_t::refused
                                                                      : outcome_t::silent;
}

QJsonObject filters_for(const element_t& _element) {
    const QJsonArray functions{QString::fromLatin1(_element.filter)};
    const QJsonArray types{_element.type};
    return {{"filters", QJsonObject{{"functions", functions}, {"types", types}}}};
}

/// What another device has heard of the answer to a request of the first one.
outcome_t heard_by(const kit::raw_mqtt_t& _device, const QJsonObject& _answer) {
    const QByteArray uuid = _answer.value(QLatin1String("uuid")).toString().toLatin1();
    for (const kit::raw_message_t& message : _device.so_far()) {
        if (!uuid.isEmpty() && message.payload.contains(uuid)) {
            return outcome_of(object_of(message.payload));
        }
    }
    return outcome_t::silent;
}

}  // namespace

void try_reads(visitor_t& _visitor) {
    const QString& user = _visitor.plan.user;
    const auto other = _visitor.device(_visitor.new_id("answers"));
    if (!other) {
        _visitor.miss("reads");
        return;
    }
    other->subscribe(own(user, "+/status/get/#"), 2);
    QList<request_t> requests;
    for (const element_t& element : elements()) {
        requests.append({request_topic(user, "get", element.id)});
        requests.append({request_topic(user, "get", element.id), filters_for(element)});
    }
    requests.append({request_topic(user, "get")});
    const QList<QJsonObject> answers = ask(*_visitor.client, requests);
    other->is_alive();
    const QJsonObject list = answers.constLast().value(QLatin1String("data")).toObject();
    for (qsizetype index = 0; index < elements().size(); ++index) {
        const element_t& element = elements()[index];
        const QJsonObject& answer = answers[2 * index];
        _visitor.note(path_t::read_one, element, outcome_of(answer));
        _visitor.note(path_t::filtered_read, element, outcome_of(answers[2 * index + 1]));
        _visitor.note(path_t::own_answers, element, heard_by(*other, answer));
        _visitor.note(
            path_t::read_all, element,
            list.contains(QLatin1String(element.id)) ? outcome_t::allowed : outcome_t::silent);
    }
    _visitor.client->forget();
}

}  // namespace matrix
