#include "live/portions_t.h"

#include <QMetaMethod>
#include <algorithm>
#include <utility>

namespace database::live {

namespace {

/// Drivers work on one while the other leaves.
constexpr int most_under_way = 2;

}  // namespace

portions_t::portions_t(std::function<void(const QString&)> _announce, int _size, QObject* _parent)
    : portions_t(
          [each = std::move(_announce)](const QStringList& _ids) {
              std::for_each(_ids.begin(), _ids.end(), each);
          },
          [_size](qsizetype _waiting, int) { return _size == 0 ? _waiting : _size; }, _parent) {}

portions_t::portions_t(std::function<void(const QStringList&)> _announce,
                       std::function<qsizetype(qsizetype, int)> _size, QObject* _parent)
    : QObject(_parent), announce(std::move(_announce)), size(std::move(_size)) {}

portions_t::~portions_t() = default;

void portions_t::add(const QStringList& _ids) {
    for (const QString& id : _ids) {
        if (known.insert(id).second) {
            waiting.push_back(id);
        }
    }
    go_on();
}

void portions_t::add_first(const QStringList& _ids) {
    const std::set<QString> first(_ids.begin(), _ids.end());
    std::erase_if(waiting, [&first](const QString& _id) { return first.count(_id) > 0; });
    waiting.insert(waiting.begin(), first.begin(), first.end());
    known.insert(first.begin(), first.end());
    go_on();
}

void portions_t::add_last(const QString& _id) {
    if (known.count(_id) > 0) {
        std::erase(waiting, _id);
    }
    known.insert(_id);
    waiting.push_back(_id);
    go_on();
}

void portions_t::settle() {
    if (is_paced()) {
        send_off();
    } else {
        Q_EMIT over();
    }
}

void portions_t::taken() {
    if (under_way == 0) {
        return;
    }
    --under_way;
    go_on();
    if (!is_busy()) {
        Q_EMIT over();
    }
}

void portions_t::go_on() {
    while (!waiting.empty() && (under_way < most_under_way || !is_paced())) {
        announce_portion();
        if (is_paced()) {
            send_off();
        }
    }
}

void portions_t::announce_portion() {
    QStringList ids;
    for (qsizetype left = size(qsizetype(waiting.size()), under_way); left > 0 && !waiting.empty();
         --left) {
        known.erase(waiting.front());
        ids.append(std::move(waiting.front()));
        waiting.pop_front();
    }
    announce(ids);
}

void portions_t::send_off() {
    ++under_way;
    Q_EMIT announced();
}

bool portions_t::is_paced() const {
    return isSignalConnected(QMetaMethod::fromSignal(&portions_t::announced));
}

}  // namespace database::live
