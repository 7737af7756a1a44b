#include <QMap>

#include "system/rights_matrix/attempts.h"
#include "system/rights_matrix/matrix_home.h"

namespace matrix {

namespace {

/// A device that subscribes what is not its user's.
struct listener_t {
    path_t path;
    std::unique_ptr<kit::raw_mqtt_t> device;
    QMap<QByteArray, int> codes{};  ///< by element, or one for all under ""

    void subscribe(const QByteArray& _filter, const QByteArray& _id = {}) {
        // The worst of several filters counts.
        const int code = device->subscribe(_filter, 2);
        codes[_id] = codes.contains(_id) ? qMin(codes.value(_id), code) : code;
    }
};

void subscribe_by_name(listener_t* _listener) {
    for (const element_t& element : elements()) {
        if (_listener->path == path_t::foreign_state) {
            _listener->subscribe(state_topic(warden(), element.id), element.id);
            continue;
        }
        const QByteArray answers = "me/status/get/elements/objects_list";
        _listener->subscribe(own(warden(), answers + '/' + element.id), element.id);
        _listener->subscribe(own(warden(), answers), element.id);
    }
}

void subscribe(listener_t* _listener) {
    const QByteArray foreign = own(warden(), "#");
    switch (_listener->path) {
        case path_t::everything:
            for (const char* const filter : {"#", "+/#", "/#", "$SYS/#"}) {
                _listener->subscribe(filter);
            }
            break;
        case path_t::any_user:
            for (const char* const filter :
                 {"local/api/v1/+/#", "local/+/v1/+/status/#", "local/api/+/+/+/status/#",
                  "+/+/+/+/status/elements/objects_list/+"}) {
                _listener->subscribe(filter);
            }
            break;
        case path_t::foreign_group:
            _listener->subscribe("$share/group/#");
            _listener->subscribe("$share/group/" + foreign);
            _listener->subscribe("$share/+/" + foreign);
            break;
        default:
            subscribe_by_name(_listener);
            break;
    }
}

/// Whether a message tells something of this element that was not for this user.
bool tells(const kit::raw_message_t& _message, const QString& _user, const QByteArray& _id) {
    return !_message.payload.isEmpty() && !_message.topic.startsWith(own(_user, {})) &&
           (_message.topic.endsWith('/' + _id) || _message.payload.contains('"' + _id + '"'));
}

outcome_t outcome_of(const listener_t& _listener, const QString& _user, const element_t& _element) {
    for (const kit::raw_message_t& message : _listener.device->so_far()) {
        if (tells(message, _user, _element.id)) {
            return outcome_t::allowed;
        }
    }
    const QByteArray key = _listener.codes.contains({}) ? QByteArray() : _element.id;
    return _listener.codes.value(key) >= 128 ? outcome_t::refused : outcome_t::silent;
}

}  // namespace

void try_listening(visitor_t& _visitor) {
    std::vector<listener_t> listeners;
    for (const path_t path : {path_t::everything, path_t::any_user, path_t::foreign_group,
                              path_t::foreign_state, path_t::foreign_answers}) {
        listener_t listener{path, _visitor.device(_visitor.new_id("ear"))};
        if (!listener.device) {
            _visitor.miss("listening");
            return;
        }
        subscribe(&listener);
        listeners.push_back(std::move(listener));
    }
    _visitor.warden.write(_visitor.warden.new_mark());
    _visitor.warden.read_each();
    for (const listener_t& listener : listeners) {
        // Behind all that the warden has heard.
        listener.device->is_alive();
        for (const element_t& element : elements()) {
            _visitor.note(listener.path, element,
                          outcome_of(listener, _visitor.plan.user, element));
        }
    }
    _visitor.client->forget();
}

}  // namespace matrix
