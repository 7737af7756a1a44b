#pragma once

#include <QByteArray>
#include <QCryptographicHash>
#include <algorithm>

#include "broker/plugin/control_message_t.h"
#include "broker/plugin/password_check_t.h"
#include "unit/host/broker/plugin/plugin_broker_t.h"

/// Small parts of the plugin as its unit tests need them.

inline broker::plugin::control_message_t message_of(const QByteArray& _head,
                                                    const QByteArrayList& _rows) {
    const QByteArray text = _head + "\n" + (_rows + QByteArrayList{"end"}).join("\n");
    return broker::plugin::control_message_t::parse({text.constData(), std::size_t(text.size())});
}

/// A digest that differs for each number.
inline broker::plugin::digest_t digest_of(int _number) {
    const QByteArray bytes =
        QCryptographicHash::hash(QByteArray::number(_number), QCryptographicHash::Sha256);
    broker::plugin::digest_t made{};
    std::copy(bytes.begin(), bytes.end(), made.begin());
    return made;
}

/// A password of @p _user that waits, told apart by @p _number; checked against "right".
inline broker::plugin::password_check_t check_of(const QByteArray& _user, int _number,
                                                 const QByteArray& _password = "wrong",
                                                 int _iterations = 1) {
    return {digest_of(_number),
            {_user.toStdString(), "client", "127.0.0.1"},
            broker::plugin::password_key_t({_password.constData(), std::size_t(_password.size())}),
            *broker::plugin::stored_hash_t::parse(
                plugin_broker_t::hash("right", _iterations).constData()),
            1};
}
