#include <algorithm>

#include "system/rights_matrix/attempts.h"
#include "system/rights_matrix/matrix_home.h"

namespace matrix {

namespace {

/// Published as a state and as an answer, retained and not; the least refusal of the four.
int forge(visitor_t& _visitor, const QString& _owner, const QByteArray& _id,
          const QByteArray& _text) {
    int code = 255;
    const QByteArray answer = own(_owner, "me/status/get/elements/objects_list/" + _id);
    for (const QByteArray& topic : {state_topic(_owner, _id), answer}) {
        for (const bool retain : {false, true}) {
            code = qMin(code, _visitor.client->publish(topic, _text, 1, retain));
        }
    }
    return code;
}

QByteArray forged_text(const visitor_t& _visitor, const element_t& _element) {
    return R"({"data":{"name":"forged )" + _element.id + ' ' + _visitor.plan.user.toLatin1() +
           "\"}}";
}

bool has(const kit::raw_mqtt_t& _device, const QByteArray& _text) {
    return std::any_of(_device.so_far().begin(), _device.so_far().end(),
                       [&](const kit::raw_message_t& message) { return message.payload == _text; });
}

/// In his own tree, where a retained forgery stays, or in the warden's.
void forge_states(visitor_t& _visitor, path_t _path) {
    const bool is_own = _path == path_t::forged_state;
    const QString owner = is_own ? _visitor.plan.user : warden();
    QList<int> codes;
    for (const element_t& element : elements()) {
        codes.append(forge(_visitor, owner, element.id, forged_text(_visitor, element)));
    }
    const auto late = _visitor.device(_visitor.new_id("late"));
    if (!late) {
        _visitor.miss("forging");
        return;
    }
    late->subscribe(own(owner, "#"), 2);
    late->is_alive();
    settle(*_visitor.client, _visitor.plan.user);
    for (qsizetype index = 0; index < elements().size(); ++index) {
        const element_t& element = elements()[index];
        const QByteArray text = forged_text(_visitor, element);
        const bool is_heard = has(*_visitor.client, text) || has(*late, text) ||
                              (!is_own && _visitor.warden.has_heard(text));
        _visitor.note(_path, element,
                      is_heard              ? outcome_t::allowed
                      : codes[index] >= 128 ? outcome_t::refused
                                            : outcome_t::silent);
    }
}

/// To write, and to read: what is read goes to the other user only, see try_listening().
void ask_for_another(visitor_t& _visitor) {
    const mark_t mark = _visitor.warden.new_mark();
    QList<int> codes;
    for (const element_t& element : elements()) {
        const QByteArray write = text_of(
            {{QStringLiteral("data"), functions_of(element.function, mark.value(element.id))}});
        codes.append(_visitor.client->publish(request_topic(warden(), "set", element.id), write));
    }
    settle(*_visitor.client, _visitor.plan.user);
    const QSet<QByteArray> reached = _visitor.warden.reached_by(mark);
    for (qsizetype index = 0; index < elements().size(); ++index) {
        const element_t& element = elements()[index];
        _visitor.note(path_t::foreign_request, element,
                      reached.contains(element.id) ? outcome_t::allowed
                      : codes[index] >= 128        ? outcome_t::refused
                                                   : outcome_t::silent);
    }
}

}  // namespace

void try_forging(visitor_t& _visitor) {
    forge_states(_visitor, path_t::forged_state);
    forge_states(_visitor, path_t::forged_elsewhere);
    ask_for_another(_visitor);
    _visitor.client->forget();
}

}  // namespace matrix
