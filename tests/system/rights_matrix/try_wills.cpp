#include <algorithm>

#include "system/rights_matrix/attempts.h"
#include "system/rights_matrix/matrix_home.h"

namespace matrix {

namespace {

QJsonObject write_with(const mark_t& _mark, const QString& _uuid) {
    QJsonObject write = warden_t::list_write(_mark);
    write.insert(QStringLiteral("uuid"), _uuid);
    return write;
}

/// What the server has answered to the will, which the first device hears.
QList<QJsonObject> answers_to(visitor_t& _visitor, const QString& _uuid) {
    QJsonObject answer;
    _visitor.client->wait_for_message([&](const kit::raw_message_t& message) {
        const bool fits =
            message.payload.contains(_uuid.toLatin1()) && !message.topic.contains("/request/");
        answer = fits ? object_of(message.payload) : QJsonObject();
        return fits;
    });
    QList<QJsonObject> answers;
    for (const element_t& element : elements()) {
        answers.append(answer.value(QLatin1String("data"))
                           .toObject()
                           .value(QLatin1String(element.id))
                           .toObject());
    }
    return answers;
}

void leave_will(visitor_t& _visitor, path_t _path, quint32 _delay) {
    const mark_t mark = _visitor.warden.new_mark();
    const QString uuid = new_uuid();
    const auto leaving = _visitor.device(
        _visitor.new_id("leaving"), {.expiry = _delay == 0 ? 0u : 100u,
                                     .will = {.topic = request_topic(_visitor.plan.user, "set"),
                                              .payload = text_of(write_with(mark, uuid)),
                                              .delay = _delay}});
    if (!leaving) {
        _visitor.miss("last will");
        return;
    }
    leaving->vanish();
    const QList<QJsonObject> answers = answers_to(_visitor, uuid);
    _visitor.note_writes(_path, answers, mark);
}

bool has(const kit::raw_mqtt_t& _client, const QByteArray& _text) {
    return std::any_of(
        _client.so_far().begin(), _client.so_far().end(),
        [&](const kit::raw_message_t& message) { return message.payload.contains(_text); });
}

/// A request in the warden's name, and a state. Were it published, it would be done by the time
/// that another connection's request is.
void leave_foreign_will(visitor_t& _visitor) {
    const mark_t mark = _visitor.warden.new_mark();
    const auto leaving = _visitor.device(
        _visitor.new_id("leaving"), {.will = {.topic = request_topic(warden(), "set"),
                                              .payload = text_of(warden_t::list_write(mark))}});
    const auto forging = _visitor.device(
        _visitor.new_id("leaving"),
        {.will = {.topic = state_topic(_visitor.plan.user, elements().constFirst().id),
                  .payload = R"({"data":"forged will"})"}});
    const bool let_in = leaving && forging;
    for (const auto* const device : {&leaving, &forging}) {
        if (*device) {
            (*device)->vanish();
        }
    }
    settle(*_visitor.client, _visitor.plan.user);
    const QSet<QByteArray> reached = _visitor.warden.reached_by(mark);
    const bool is_forged = has(*_visitor.client, "forged will");
    for (const element_t& element : elements()) {
        _visitor.note(path_t::foreign_will, element,
                      reached.contains(element.id) || is_forged ? outcome_t::allowed
                      : let_in                                  ? outcome_t::silent
                                                                : outcome_t::refused);
    }
}

}  // namespace

void try_wills(visitor_t& _visitor) {
    leave_will(_visitor, path_t::will, 0);
    leave_foreign_will(_visitor);
    if (_visitor.plan.door.version == 5 && _visitor.plan.waits_for_wills) {
        leave_will(_visitor, path_t::delayed_will, 1);
    }
    _visitor.client->forget();
}

}  // namespace matrix
