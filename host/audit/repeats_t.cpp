#include "audit/repeats_t.h"

#include <QStringList>
#include <algorithm>
#include <iterator>
#include <utility>

#include "audit/line_text.h"
#include "audit/operations.h"

namespace audit {

namespace {

constexpr qint64 ms_a_day = 24 * 60 * 60 * 1000;
/// Different operations with different results that one owner may have counted.
constexpr qsizetype most_rest = 4;
/// In front of an owner that no API user is: the name rule has no such character.
constexpr QLatin1Char outsider('/');

QString joined(const QStringList& _texts) {
    return _texts.join(QChar(0));
}

/// What makes two entries the same thing again. Of an API user not the value: a slider would fill
/// the file.
QString sameness_of(const entry_t& _entry) {
    QStringList texts{_entry.user,      _entry.client,  _entry.address,  _entry.by,
                      _entry.operation, _entry.element, _entry.function, _entry.result};
    if (!_entry.by.isEmpty()) {
        texts += {_entry.value, _entry.detail};
    }
    return joined(texts);
}

/// Without what one of many has alone.
entry_t rest_of(const entry_t& _entry) {
    entry_t rest;
    rest.user = _entry.user;
    rest.by = _entry.by;
    rest.operation = _entry.operation;
    rest.result = _entry.result;
    rest.detail = QStringLiteral("different ones, too many to be told one by one");
    return rest;
}

entry_t unspecific(const entry_t& _entry) {
    entry_t rest = rest_of(_entry);
    rest.operation = operation::lost;
    rest.result.clear();
    return rest;
}

void add(const entry_t& _entry, entry_t* _sum) {
    const qint64 first = _entry.since != 0 ? _entry.since : _entry.time;
    _sum->since = _sum->count == 0 ? first : std::min(_sum->since, first);
    _sum->time = std::max(_sum->time, _entry.time);
    _sum->count += _entry.count;
}

/// One that was counted alone is as one that was told at once.
entry_t told_of(entry_t _sum) {
    if (_sum.count == 1) {
        _sum.since = 0;
    }
    return _sum;
}

void count_rest(const entry_t& _entry, QHash<QString, entry_t>* _rest) {
    const auto slot = [_rest](const entry_t& _of, qsizetype _most) -> entry_t* {
        const QString key = joined({_of.operation, _of.result});
        if (!_rest->contains(key) && _rest->size() < _most) {
            _rest->insert(key, _of);
            (*_rest)[key].count = 0;
        }
        const auto found = _rest->find(key);
        return found == _rest->end() ? nullptr : &*found;
    };
    entry_t* sum = slot(rest_of(_entry), most_rest);
    if (sum == nullptr) {
        sum = slot(unspecific(_entry), most_rest + 1);
    }
    add(_entry, sum);
}

}  // namespace

QString owner_of(const entry_t& _entry) {
    if (_entry.operation == operation::sign_in && _entry.result != result::ok) {
        return outsider + QStringLiteral("strangers");
    }
    if (!_entry.by.isEmpty() || _entry.user.isEmpty()) {
        return outsider + _entry.by;
    }
    const bool is_read = _entry.operation == operation::read;
    const bool is_write = _entry.operation == operation::write && _entry.result == result::accepted;
    return _entry.user + (is_read    ? QStringLiteral("/reads")
                          : is_write ? QStringLiteral("/writes")
                                     : QStringLiteral("/other"));
}

bool is_outsider(const QString& _owner) {
    return _owner.isEmpty() || _owner.startsWith(outsider);
}

repeats_t::owner_t& repeats_t::owner(const entry_t& _entry) {
    QString name = owner_of(_entry);
    const bool changes = _entry.operation != operation::sign_in && is_outsider(name);
    if (!owners.contains(name) && owners.size() >= limits.owners) {
        name = outsider + QStringLiteral("more");
    }
    owner_t& found = owners[name];
    found.factor = changes ? limits.outsider_factor : 1;
    return found;
}

QByteArray repeats_t::take(const entry_t& _entry) {
    const entry_t entry = shortened(_entry);
    owner_t& of = owner(entry);
    const QString key = sameness_of(entry);
    const auto known = of.told.find(key);
    if (known != of.told.end()) {
        entry_t sum = entry;
        sum.count = known->count;
        sum.since = known->since;
        sum.time = known->time;
        add(entry, &sum);
        *known = sum;
        return {};
    }
    if (of.told.size() >= limits.lines_a_minute * of.factor || lines >= limits.lines_of_all ||
        of.bytes >= limits.bytes_a_day * of.factor) {
        count_rest(entry, &of.rest);
        return {};
    }
    entry_t nothing = entry;
    nothing.count = 0;
    of.told.insert(key, nothing);
    ++lines;
    const QByteArray line = line_of(entry);
    of.bytes += line.size();
    return line;
}

void repeats_t::settle(owner_t* _owner, QList<entry_t>* _counted) {
    for (auto each = _owner->told.begin(); each != _owner->told.end();) {
        if (each->count == 0) {
            each = _owner->told.erase(each);
            --lines;
            continue;
        }
        _counted->append(told_of(*each));
        each->count = 0;
        ++each;
    }
    for (const entry_t& rest : std::exchange(_owner->rest, {})) {
        _counted->append(told_of(rest));
    }
}

QByteArray repeats_t::settle(qint64 _now) {
    const bool is_new_day = std::exchange(day, _now / ms_a_day) != _now / ms_a_day;
    QList<entry_t> counted;
    for (auto each = owners.begin(); each != owners.end();) {
        const qsizetype before = counted.size();
        settle(&*each, &counted);
        if (is_new_day) {
            each->bytes = 0;
        }
        for (qsizetype i = before; i < counted.size(); ++i) {
            each->bytes += line_of(counted[i]).size();
        }
        const bool is_over = each->told.isEmpty() && each->bytes == 0;
        each = is_over ? owners.erase(each) : std::next(each);
    }
    std::stable_sort(counted.begin(), counted.end(),
                     [](const entry_t& _a, const entry_t& _b) { return _a.time < _b.time; });
    QByteArray text;
    for (const entry_t& entry : counted) {
        text += line_of(entry);
    }
    return text;
}

}  // namespace audit
