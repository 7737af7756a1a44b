#include "ets/rest_maker_t.h"

#include <QHash>
#include <cstdlib>

#include "database/name_rules.h"
#include "ets/name_words.h"

namespace ets {

namespace {

enum family_t { no_family, light, shading, climate, moist, window, scenes };

family_t family_of(part_t _part) {
    switch (_part) {
        case part_t::execute:
        case part_t::dim:
        case part_t::level:
        case part_t::percent:
        case part_t::power:
            return light;
        case part_t::move:
        case part_t::stop:
        case part_t::position:
        case part_t::slat:
            return shading;
        case part_t::setpoint:
        case part_t::temperature:
        case part_t::valve:
        case part_t::mode:
            return climate;
        case part_t::humidity:
            return moist;
        case part_t::contact:
            return window;
        case part_t::scene:
            return scenes;
        case part_t::none:
            break;
    }
    return no_family;
}

/// Never a command, whatever the name says.
bool is_sensor(part_t _part) {
    return _part == part_t::temperature || _part == part_t::humidity || _part == part_t::contact ||
           _part == part_t::power || _part == part_t::valve;
}

/// What stands for a group among others of its kind when its name says no more than its part.
QString base_of(const group_t& _group) {
    const QString base = base_name(_group.name);
    if (!base.isEmpty()) {
        return base;
    }
    const QString described = base_name(_group.description);
    return described.isEmpty() ? base_name(_group.ranges.value(_group.ranges.size() - 1))
                               : described;
}

/// How far two addresses are from each other, as people lay them out: a lamp's addresses stand one
/// after the other, or have one number in the groups for switching and for states.
int distance(quint16 _one, quint16 _other) {
    constexpr int other_main = 100'000;
    const auto main_of = [](quint16 _raw) { return _raw >> 11; };
    const auto middle_of = [](quint16 _raw) { return (_raw >> 8) & 7; };
    const auto sub_of = [](quint16 _raw) { return _raw & 255; };
    const int apart = main_of(_one) == main_of(_other) ? 0 : other_main;
    const int subs = 2 * std::abs(sub_of(_one) - sub_of(_other));
    return apart + subs + (middle_of(_one) == middle_of(_other) ? 0 : 1);
}

QString texts(part_t _part) {
    static const QHash<part_t, QString> names{
        {part_t::dim, QStringLiteral("dims up and down, and no value was found beside it")},
        {part_t::percent, QStringLiteral("is a percentage that nothing tells the use of")},
        {part_t::stop, QStringLiteral("stops a blind that was not found")},
        {part_t::valve, QStringLiteral("belongs to a heating whose set point was not found")},
        {part_t::mode, QStringLiteral("belongs to a heating whose set point was not found")},
        {part_t::power, QStringLiteral("measures something that was not found")},
    };
    return names.value(_part);
}

}  // namespace

rest_maker_t::rest_maker_t(project_t* _project, const QSet<quint16>& _covered) : project(_project) {
    for (const group_t& group : std::as_const(project->groups)) {
        if (!_covered.contains(group.raw)) {
            rest.append(group);
        }
    }
}

QList<draft_t> rest_maker_t::make() {
    // What cannot be told by itself comes last: it joins what is there by then.
    for (const bool open : {false, true}) {
        for (const group_t& group : std::as_const(rest)) {
            if ((part_of(group) == part_t::percent) == open) {
                sort_in(group);
            }
        }
    }
    for (auto it = sets.cbegin(); it != sets.cend(); ++it) {
        for (const set_t& set : it.value()) {
            make_of(it.key().first, set);
        }
    }
    for (const group_t& group : std::as_const(rest)) {
        if (!used.contains(group.raw)) {
            note_left(group);
        }
    }
    return drafts;
}

void rest_maker_t::sort_in(const group_t& _group) {
    part_t part = part_of(_group);
    if (part == part_t::scene) {
        make_scene(_group);
    }
    key_t key{family_of(part), base_of(_group)};
    if (key.first == no_family || key.first == scenes) {
        return;
    }
    if (part == part_t::percent) {
        const key_t blind{shading, key.second};
        const bool is_blind = sets.contains(blind);
        part = is_blind ? part_t::position : part_t::level;
        key = is_blind ? blind : key;
        if (!sets.contains(key)) {
            return;
        }
    }
    const bool is_state = is_sensor(part) || is_status(_group);
    set_t& set = nearest(&sets[key], part, is_state, _group.raw);
    (is_state ? set.states : set.commands).insert(part, _group.raw);
}

/// The nearest set that has a place for it, or a new one.
rest_maker_t::set_t& rest_maker_t::nearest(QList<set_t>* _sets, part_t _part, bool _is_state,
                                           quint16 _raw) {
    // Where hundreds have one name, the last of them are enough.
    constexpr qsizetype most = 200;
    qsizetype best = -1;
    for (qsizetype at = qMax<qsizetype>(0, _sets->size() - most); at < _sets->size(); ++at) {
        const set_t& set = _sets->at(at);
        const bool is_free = !(_is_state ? set.states : set.commands).contains(_part);
        if (is_free &&
            (best < 0 || distance(set.first, _raw) < distance(_sets->at(best).first, _raw))) {
            best = at;
        }
    }
    if (best < 0) {
        best = _sets->size();
        _sets->append(set_t{{}, {}, _raw});
    }
    return (*_sets)[best];
}

void rest_maker_t::make_of(int _family, const set_t& _set) {
    switch (_family) {
        case light:
            make_light(_set);
            return;
        case shading:
            make_blind(_set);
            return;
        case climate:
            make_climate(_set);
            return;
        case moist:
            make_single(_set, part_t::humidity, kind::humidity, QStringLiteral("humidity"));
            return;
        case window:
            make_single(_set, part_t::contact, kind::contact, QStringLiteral("open"));
            return;
        default:
            return;
    }
}

void rest_maker_t::make_light(const set_t& _set) {
    const point_t execute = point(_set, part_t::execute);
    const point_t level = point(_set, part_t::level);
    const point_t power = point(_set, part_t::power);
    const bool is_dimmer =
        !level.is_empty() || (_set.commands.contains(part_t::dim) && !execute.is_empty());
    if (!is_dimmer && execute.is_empty()) {
        return;
    }
    draft_t made = draft(kind::lamp, _set, {part_t::execute, part_t::level});
    add(&made, QStringLiteral("execute"), execute, true);
    if (is_dimmer) {
        made.type = kind::dimmer;
        add(&made, QStringLiteral("level"), level, true);
        used.insert(_set.commands.value(part_t::dim));
    } else if (!power.is_empty() || says(made.name, hint_t::socket)) {
        made.type = kind::socket;
        add(&made, QStringLiteral("power"), power, true);
    }
    drafts.append(made);
}

void rest_maker_t::make_blind(const set_t& _set) {
    const point_t move = point(_set, part_t::move);
    const point_t position = point(_set, part_t::position);
    if (move.is_empty() && position.is_empty()) {
        return;
    }
    draft_t made = draft(kind::blind, _set, {part_t::move, part_t::position});
    add(&made, QStringLiteral("position"), position, true);
    add(&made, QStringLiteral("slat"), point(_set, part_t::slat), true);
    add(&made, QStringLiteral("move"), move, false);
    add(&made, QStringLiteral("stop"), point(_set, part_t::stop), false);
    drafts.append(made);
}

void rest_maker_t::make_climate(const set_t& _set) {
    const point_t setpoint = point(_set, part_t::setpoint);
    const point_t actual = point(_set, part_t::temperature);
    if (!setpoint.is_empty()) {
        draft_t made = draft(kind::thermostat, _set, {part_t::setpoint});
        add(&made, QStringLiteral("setpoint"), setpoint, true);
        add(&made, QStringLiteral("mode"), point(_set, part_t::mode), true);
        add(&made, QStringLiteral("valve"), point(_set, part_t::valve), true);
        add(&made, QStringLiteral("actual"), actual, false);
        drafts.append(made);
    }
    make_single(_set, part_t::temperature, kind::temperature, QStringLiteral("temperature"));
}

void rest_maker_t::make_scene(const group_t& _group) {
    const int number = scene_number(_group.name);
    draft_t made{.type = kind::scene,
                 .name = name_with_room(_group.name, _group.room),
                 .origin = {},
                 .points = {{QStringLiteral("scene"),
                             {.write = _group.raw,
                              .status = {},
                              .dpt = type_for(part_t::scene, _group.dpt)}}},
                 .empty_points = {},
                 .scene = number == 0 ? 1 : number};
    used.insert(_group.raw);
    drafts.append(made);
    if (number == 0) {
        project->note(QStringLiteral("%1 %2 calls scenes, and a project does not tell which: scene "
                                     "1 is made, the others are yours to add.")
                          .arg(project->address(_group.raw), database::quoted(_group.name)));
    }
}

void rest_maker_t::make_single(const set_t& _set, part_t _part, int _type, const QString& _point) {
    const point_t found = point(_set, _part);
    if (!found.is_empty()) {
        draft_t made = draft(_type, _set, {_part});
        add(&made, _point, found, true);
        drafts.append(made);
    }
}

point_t rest_maker_t::point(const set_t& _set, part_t _part) const {
    point_t made;
    if (_set.commands.contains(_part)) {
        made.write = _set.commands[_part];
    }
    if (_set.states.contains(_part)) {
        made.status.append(_set.states[_part]);
    }
    if (!made.is_empty()) {
        made.dpt = type_for(_part, project->groups.value(made.primary()).dpt);
    }
    return made;
}

/// Named by the first of the parts that is there.
draft_t rest_maker_t::draft(int _type, const set_t& _set,
                            std::initializer_list<part_t> _order) const {
    draft_t made;
    made.type = _type;
    for (const part_t part : _order) {
        const point_t found = point(_set, part);
        if (!found.is_empty()) {
            const group_t group = project->groups.value(found.primary());
            const bool is_bare = base_name(group.name).isEmpty() && !group.description.isEmpty();
            made.name = name_with_room(is_bare ? group.description : group.name, group.room);
            break;
        }
    }
    return made;
}

void rest_maker_t::add(draft_t* _draft, const QString& _key, const point_t& _point, bool _always) {
    if (!_point.is_empty()) {
        _draft->points.insert(_key, _point);
        if (_point.write) {
            used.insert(*_point.write);
        }
        used.unite(QSet<quint16>(_point.status.begin(), _point.status.end()));
    } else if (_always) {
        _draft->empty_points.append(_key);
    }
}

void rest_maker_t::note_left(const group_t& _group) {
    QString why = texts(part_of(_group));
    if (_group.dpt.isEmpty()) {
        why = QStringLiteral("has no data point type");
    } else if (why.isEmpty()) {
        why = QStringLiteral("is of type %1, which no element has a use for").arg(_group.dpt);
    }
    project->note(QStringLiteral("%1 %2 is left out: it %3.")
                      .arg(project->address(_group.raw), database::quoted(_group.name), why));
}

}  // namespace ets
