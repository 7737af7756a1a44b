#include "ets/part_t.h"

#include <QHash>
#include <algorithm>

#include "ets/data_point_type.h"
#include "ets/name_words.h"
#include "knx/data_point_types.h"

namespace ets {

namespace {

/// Types that say by themselves what they are for.
const QHash<QString, part_t>& plain_types() {
    static const QHash<QString, part_t> parts{
        {QStringLiteral("1.001"), part_t::execute},  {QStringLiteral("1.011"), part_t::execute},
        {QStringLiteral("1.007"), part_t::stop},     {QStringLiteral("1.008"), part_t::move},
        {QStringLiteral("1.010"), part_t::stop},     {QStringLiteral("1.019"), part_t::contact},
        {QStringLiteral("3"), part_t::dim},          {QStringLiteral("3.007"), part_t::dim},
        {QStringLiteral("9.007"), part_t::humidity}, {QStringLiteral("14.056"), part_t::power},
        {QStringLiteral("17"), part_t::scene},       {QStringLiteral("17.001"), part_t::scene},
        {QStringLiteral("18"), part_t::scene},       {QStringLiteral("18.001"), part_t::scene},
        {QStringLiteral("20.102"), part_t::mode},
    };
    return parts;
}

struct word_t {
    hint_t hint;
    part_t part;
};

part_t by_words(const QString& _name, std::initializer_list<word_t> _words, part_t _else) {
    const auto* const found = std::find_if(
        _words.begin(), _words.end(), [&](const word_t& _word) { return says(_name, _word.hint); });
    return found == _words.end() ? _else : found->part;
}

part_t percent(const QString& _name, part_t _else) {
    return by_words(_name,
                    {{hint_t::slat, part_t::slat},
                     {hint_t::valve, part_t::valve},
                     {hint_t::position, part_t::position},
                     {hint_t::dimming, part_t::level}},
                    _else);
}

part_t degrees(const QString& _name, part_t _else) {
    return by_words(_name,
                    {{hint_t::setpoint, part_t::setpoint},
                     {hint_t::temperature, part_t::temperature},
                     {hint_t::humidity, part_t::humidity}},
                    _else);
}

}  // namespace

part_t part_of(const group_t& _group) {
    const part_t plain = plain_types().value(_group.dpt, part_t::none);
    if (plain != part_t::none) {
        return plain;
    }
    if (_group.dpt == QLatin1String("1")) {
        return by_words(_group.name,
                        {{hint_t::stopping, part_t::stop}, {hint_t::moving, part_t::move}},
                        part_t::execute);
    }
    if (_group.dpt == QLatin1String("5.001") || _group.dpt == QLatin1String("5")) {
        return percent(_group.name, part_t::percent);
    }
    if (_group.dpt == QLatin1String("9.001")) {
        return degrees(_group.name, part_t::temperature);
    }
    return _group.dpt == QLatin1String("9") ? degrees(_group.name, part_t::none) : part_t::none;
}

bool is_status(const group_t& _group) {
    return _group.dpt == QLatin1String("1.011") || says(_group.name, hint_t::status) ||
           std::any_of(_group.ranges.begin(), _group.ranges.end(),
                       [](const QString& _range) { return says(_range, hint_t::status); });
}

QString type_for(part_t _part, const QString& _dpt) {
    static const QHash<part_t, QString> usual{
        {part_t::execute, QStringLiteral("1.001")},  {part_t::level, QStringLiteral("5.001")},
        {part_t::move, QStringLiteral("1.008")},     {part_t::stop, QStringLiteral("1.007")},
        {part_t::position, QStringLiteral("5.001")}, {part_t::slat, QStringLiteral("5.001")},
        {part_t::setpoint, QStringLiteral("9.001")}, {part_t::temperature, QStringLiteral("9.001")},
        {part_t::valve, QStringLiteral("5.001")},    {part_t::mode, QStringLiteral("20.102")},
        {part_t::humidity, QStringLiteral("9.007")}, {part_t::contact, QStringLiteral("1.019")},
        {part_t::power, QStringLiteral("14.056")},   {part_t::scene, QStringLiteral("17.001")},
    };
    const QString own = usual.value(_part);
    if (_dpt == QLatin1String("18")) {
        return QStringLiteral("18.001");
    }
    const bool is_vague = _dpt == QString::number(main_type(own));
    return is_vague || knx::find_data_point_type(_dpt) == nullptr ? own : _dpt;
}

}  // namespace ets
