#include "system/rights_matrix/attempts.h"

namespace matrix {

namespace {

QJsonObject one_write(const element_t& _element, const mark_t& _mark) {
    return {{QStringLiteral("data"), functions_of(_element.function, _mark.value(_element.id))}};
}

void write_one(visitor_t& _visitor) {
    const mark_t mark = _visitor.warden.new_mark();
    QList<request_t> requests;
    for (const element_t& element : elements()) {
        requests.append(
            {request_topic(_visitor.plan.user, "set", element.id), one_write(element, mark)});
    }
    QList<QJsonObject> answers;
    for (const QJsonObject& answer : ask(*_visitor.client, requests)) {
        answers.append(answer.contains(QLatin1String("data"))
                           ? answer.value(QLatin1String("data")).toObject()
                           : answer);
    }
    _visitor.note_writes(path_t::write_one, answers, mark);
}

void write_many(visitor_t& _visitor) {
    const mark_t mark = _visitor.warden.new_mark();
    const QJsonObject answer =
        ask(*_visitor.client,
            {{request_topic(_visitor.plan.user, "set"), warden_t::list_write(mark)}})
            .constFirst();
    QList<QJsonObject> answers;
    for (const element_t& element : elements()) {
        answers.append(answer.value(QLatin1String("data"))
                           .toObject()
                           .value(QLatin1String(element.id))
                           .toObject());
    }
    _visitor.note_writes(path_t::write_many, answers, mark);
}

void write_retained(visitor_t& _visitor) {
    const mark_t mark = _visitor.warden.new_mark();
    QList<int> codes;
    for (const element_t& element : elements()) {
        codes.append(_visitor.client->publish(request_topic(_visitor.plan.user, "set", element.id),
                                              text_of(one_write(element, mark)), 1, true));
    }
    settle(*_visitor.client, _visitor.plan.user);
    const QSet<QByteArray> reached = _visitor.warden.reached_by(mark);
    for (qsizetype index = 0; index < elements().size(); ++index) {
        const element_t& element = elements()[index];
        _visitor.note(path_t::retained_request, element,
                      reached.contains(element.id) ? outcome_t::allowed
                      : codes[index] >= 128        ? outcome_t::refused
                                                   : outcome_t::silent);
    }
}

}  // namespace

void try_writes(visitor_t& _visitor) {
    write_one(_visitor);
    write_many(_visitor);
    write_retained(_visitor);
    _visitor.client->forget();
}

}  // namespace matrix
