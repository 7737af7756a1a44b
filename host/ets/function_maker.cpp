#include "ets/function_maker.h"

#include <QHash>
#include <algorithm>

#include "ets/part_t.h"

namespace ets {

namespace {

enum class way_t { command, state };

/// What an address of a function is there for: which function of the element, which way.
struct use_t {
    const char* role;
    const char* id;  ///< what older files call it
    const char* point;
    part_t part;
    way_t way;
};

constexpr use_t uses[] = {
    {"SwitchOnOff", "DR-1", "execute", part_t::execute, way_t::command},
    {"InfoOnOff", "DR-2", "execute", part_t::execute, way_t::state},
    {"DimmingValue", "DR-14", "level", part_t::level, way_t::command},
    {"InfoDimmingValue", "DR-4", "level", part_t::level, way_t::state},
    {"MoveUpDown", "DR-5", "move", part_t::move, way_t::command},
    {"StopStepUpDown", "DR-6", "stop", part_t::stop, way_t::command},
    {"CurrentAbsolutePositionBlindsPercentage", "DR-15", "position", part_t::position,
     way_t::state},
    {"CurrentAbsolutePositionSlatPercentage", "DR-16", "slat", part_t::slat, way_t::state},
    {"TempRoom", "DR-9", "actual", part_t::temperature, way_t::state},
    {"TempRoomSetpoint", "DR-10", "setpoint", part_t::setpoint, way_t::command},
    {"ValvePosition", "DR-11", "valve", part_t::valve, way_t::state},
    {"ValveSwitch", "DR-17", "valve", part_t::execute, way_t::state},
    {"HVACMode", "DR-12", "mode", part_t::mode, way_t::command},
    {"WindowStatus", "DR-13", "window", part_t::contact, way_t::state},
};

/// The element of a function's type, with what it always has; type 0: none.
struct shape_t {
    int type = 0;
    QStringList points{};
};

shape_t shape_of(const QString& _type) {
    const auto any = [&_type](std::initializer_list<const char*> _types) {
        return std::any_of(_types.begin(), _types.end(),
                           [&_type](const char* _one) { return _type == QLatin1String(_one); });
    };
    if (any({"FT-1"})) {
        return {kind::lamp, {QStringLiteral("execute")}};
    }
    if (any({"FT-2", "FT-6"})) {
        return {kind::dimmer, {QStringLiteral("execute"), QStringLiteral("level")}};
    }
    if (any({"FT-3", "FT-7"})) {
        return {kind::blind, {QStringLiteral("position"), QStringLiteral("slat")}};
    }
    if (any({"FT-4", "FT-5", "FT-8", "FT-9"})) {
        return {kind::thermostat,
                {QStringLiteral("mode"), QStringLiteral("setpoint"), QStringLiteral("valve")}};
    }
    return {};
}

/// Points that an element of a type may have.
bool fits(int _type, const QString& _point) {
    static const QHash<int, QStringList> points{
        {kind::lamp, {QStringLiteral("execute")}},
        {kind::dimmer, {QStringLiteral("execute"), QStringLiteral("level")}},
        {kind::blind,
         {QStringLiteral("position"), QStringLiteral("slat"), QStringLiteral("move"),
          QStringLiteral("stop")}},
        {kind::thermostat,
         {QStringLiteral("mode"), QStringLiteral("setpoint"), QStringLiteral("valve"),
          QStringLiteral("actual"), QStringLiteral("window")}},
    };
    return points.value(_type).contains(_point);
}

class maker_t {
 public:
    maker_t(const project_t& _project, QSet<quint16>* _covered)
        : project(_project), covered(_covered) {
        for (const function_t& function : project.functions) {
            for (const role_t& role : function.roles) {
                ++users[role.raw];
            }
        }
    }

    QList<draft_t> make() {
        for (const function_t& function : project.functions) {
            make_one(function);
        }
        return drafts;
    }

 private:
    void make_one(const function_t& _function) {
        const shape_t shape = shape_of(_function.type);
        draft_t draft{.type = shape.type,
                      .name = name_with_room(_function.name, _function.room),
                      .origin = _function.id,
                      .points = {},
                      .empty_points = {}};
        for (const use_t& use : uses) {
            add(_function, use, &draft);
        }
        only_value_is_a_command(_function, &draft);
        for (const QString& point : shape.points) {
            if (!draft.points.contains(point)) {
                draft.empty_points.append(point);
            }
        }
        if (!draft.points.isEmpty()) {
            finish(_function, draft);
        }
    }

    void add(const function_t& _function, const use_t& _use, draft_t* _draft) {
        const QString key = QLatin1String(_use.point);
        if (!fits(_draft->type, key)) {
            return;
        }
        for (const role_t& role : own_first(_function, _use)) {
            point_t& point = _draft->points[key];
            if (_use.way == way_t::state) {
                point.status.append(role.raw);
            } else if (!point.write) {
                point.write = role.raw;
            } else {
                continue;
            }
            if (point.dpt.isEmpty()) {
                point.dpt = type_for(_use.part, project.groups[role.raw].dpt);
            }
            covered->insert(role.raw);
        }
    }

    /// The addresses of a use; those that other functions have, too, only where there is no other.
    QList<role_t> own_first(const function_t& _function, const use_t& _use) const {
        QList<role_t> own;
        QList<role_t> shared;
        for (const role_t& role : _function.roles) {
            if (role.role == QLatin1String(_use.role) || role.role == QLatin1String(_use.id)) {
                (users.value(role.raw) > 1 ? shared : own).append(role);
            }
        }
        return own.isEmpty() ? shared.mid(0, 1) : own;
    }

    /// The former function "dimmable light" had one role for the value, which was its command.
    void only_value_is_a_command(const function_t& _function, draft_t* _draft) {
        const QString key = QStringLiteral("level");
        if (_function.type == QLatin1String("FT-2") && _draft->points.contains(key) &&
            !_draft->points[key].write) {
            point_t& point = _draft->points[key];
            point.write = point.status.takeFirst();
        }
    }

    /// What a function has for elements of its own goes to them, too: people want to see the
    /// temperature, which a thermostat does not show.
    void finish(const function_t& _function, const draft_t& _draft) {
        const bool is_thermostat = _draft.type == kind::thermostat;
        const QString actual = QStringLiteral("actual");
        const QString window = QStringLiteral("window");
        const auto has = [&_draft](const char* _key) {
            return _draft.points.contains(QLatin1String(_key));
        };
        if (!is_thermostat || has("setpoint") || has("mode") || has("valve")) {
            drafts.append(_draft);
        }
        if (is_thermostat && has("actual")) {
            append_sensor(_function, kind::temperature, QStringLiteral("temperature"),
                          _draft.points[actual]);
        }
        if (is_thermostat && has("window")) {
            append_sensor(_function, kind::contact, QStringLiteral("open"), _draft.points[window]);
        }
    }

    void append_sensor(const function_t& _function, int _type, const QString& _key,
                       const point_t& _point) {
        drafts.append(
            {.type = _type,
             .name = name_with_room(project.groups[_point.primary()].name, _function.room),
             .origin = _function.id,
             .points = {{_key, _point}},
             .empty_points = {}});
    }

    const project_t& project;
    QSet<quint16>* const covered;
    QHash<quint16, int> users;
    QList<draft_t> drafts;
};

}  // namespace

QList<draft_t> drafts_of_functions(const project_t& _project, QSet<quint16>* _covered) {
    return maker_t(_project, _covered).make();
}

}  // namespace ets
