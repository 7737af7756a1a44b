#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QStringList>
#include <utility>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"

namespace kit {

/// Writes down every signal of an element or of the collection, directly and in order, as one
/// text each; lists without an order of their own are sorted:
///
///     value e-1 [i-1,i-2] {execute=1}    (an element; the collection's has no values)
///     add alice e-1 readwrite
///     remove alice e-1
///     reset true [e-1,e-2]
///     acl
class event_recorder_t {
 public:
    explicit event_recorder_t(interfaces::data_api_element_object_t* _element) {
        using element_t = interfaces::data_api_element_object_t;
        QObject::connect(_element, &element_t::value_change, &context,
                         [this](const QString& _id, const QHash<QString, QString>& _values,
                                const QStringList& _functions) {
                             put(value(_id, _functions) + " {" + listed(_values) + '}');
                         });
        follow_acl(_element);
    }

    explicit event_recorder_t(interfaces::data_api_elements_t* _elements) {
        using elements_t = interfaces::data_api_elements_t;
        QObject::connect(_elements, &elements_t::value_change, &context,
                         [this](const QString& _id, const QStringList& _functions) {
                             put(value(_id, _functions));
                         });
        QObject::connect(_elements, &elements_t::on_reset_api_elements, &context,
                         [this](bool _start, const QStringList& _keys) {
                             put(QStringLiteral("reset ") + (_start ? "true" : "false") + " [" +
                                 sorted(_keys) + ']');
                         });
        QObject::connect(_elements, &elements_t::acl_changes, &context, [this] { put("acl"); });
        follow_acl(_elements);
    }
    Q_DISABLE_COPY_MOVE(event_recorder_t)

    /// What was said since the last call.
    QStringList take() { return std::exchange(events, {}); }

    /// The same after everything queued has been delivered. A pass delivers what was queued
    /// before it; from the database over an element to the collection it is two.
    QStringList take_settled() {
        for (int pass = 0; pass < 4; ++pass) {
            QCoreApplication::processEvents();
        }
        return take();
    }

 private:
    template <class sender_t>
    void follow_acl(sender_t* _sender) {
        QObject::connect(_sender, &sender_t::add_acl_element, &context,
                         [this](const QString& _user, const QString& _id, const QString& _word) {
                             put("add " + _user + ' ' + _id + ' ' + _word);
                         });
        QObject::connect(_sender, &sender_t::remove_acl_element, &context,
                         [this](const QString& _user, const QString& _id) {
                             put("remove " + _user + ' ' + _id);
                         });
    }

    static QString sorted(QStringList _list) {
        _list.sort();
        return _list.join(',');
    }
    static QString value(const QString& _id, const QStringList& _functions) {
        return "value " + _id + " [" + sorted(_functions) + ']';
    }
    static QString listed(const QHash<QString, QString>& _values) {
        QStringList list;
        for (auto entry = _values.cbegin(); entry != _values.cend(); ++entry) {
            list.append(entry.key() + '=' + entry.value());
        }
        return sorted(list);
    }
    void put(const QString& _event) { events.append(_event); }

    QStringList events;
    QObject context;
};

}  // namespace kit
