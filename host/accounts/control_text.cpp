#include "accounts/control_text.h"

#include <algorithm>

namespace accounts::control_text {

namespace {

QByteArray rows(const change_t& _change) {
    QByteArray text;
    for (const QString& name : _change.ended) {
        text += is_word(name) ? "remove " + name.toUtf8() + "\n" : QByteArray();
    }
    for (const broker_account_t& account : _change.accounts) {
        if (is_word(account.name) && is_word(account.password_hash)) {
            text += "user " + account.name.toUtf8() + " " + account.password_hash.toUtf8() + "\n";
        }
    }
    for (const QString& name : _change.withdrawn) {
        text += is_word(name) ? "withdraw " + name.toUtf8() + "\n" : QByteArray();
    }
    return text + "end\n";
}

}  // namespace

bool is_word(const QString& _text) {
    return !_text.isEmpty() && std::all_of(_text.begin(), _text.end(), [](QChar _letter) {
        return _letter > u' ' && _letter < u'\x7f';
    });
}

QByteArray all(quint64 _number, const QString& _connection_topic, const change_t& _change) {
    return "all " + QByteArray::number(_number) + "\nconnection " + _connection_topic.toUtf8() +
           "\n" + rows(_change);
}

QByteArray change(quint64 _number, const change_t& _change) {
    return "change " + QByteArray::number(_number) + "\n" + rows(_change);
}

QByteArray seen(quint64 _number) {
    return "seen " + QByteArray::number(_number) + "\nend\n";
}

}  // namespace accounts::control_text
