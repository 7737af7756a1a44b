#include "ets/installation_reader_t.h"

#include "database/name_rules.h"
#include "ets/data_point_type.h"
#include "ets/information_reader.h"

namespace ets {

using base::result_t;

namespace {

/// "P-0600-0_GA-1" -> "GA-1": later projects write the short form only.
QString short_id(const QString& _id) {
    return _id.mid(_id.lastIndexOf(u'_') + 1);
}

bool is_room(const QString& _type) {
    static const QSet<QString> types{QStringLiteral("Room"), QStringLiteral("Corridor"),
                                     QStringLiteral("Stairway"), QStringLiteral("Area"),
                                     QStringLiteral("Ground")};
    return types.contains(_type);
}

}  // namespace

installation_reader_t::installation_reader_t(project_t* _project, links_t* _links,
                                             const limits_t& _limits)
    : project(_project), links(_links), limits(_limits) {}

result_t installation_reader_t::read(QIODevice* _file, const QString& _name,
                                     const progress_t& _progress) {
    xml_walk_t walk(_file, _name, _progress);
    while (walk.next()) {
        if (walk.depth() == 1 && !is_project_root(walk.element(), walk.element_namespace())) {
            return result_t::failed(_name + QStringLiteral(" is no file of ETS."));
        }
        if (walk.is_start()) {
            on_start(walk);
        } else {
            on_end(walk.element());
        }
        if (kept > limits.links) {
            return result_t::failed(QStringLiteral("%1 holds more than any project.").arg(_name));
        }
    }
    finish();
    return walk.result();
}

void installation_reader_t::on_start(const xml_walk_t& _walk) {
    using handler_t = void (installation_reader_t::*)(const xml_walk_t&);
    static const QHash<QString, handler_t> handlers{
        {QStringLiteral("DeviceInstance"), &installation_reader_t::on_device},
        {QStringLiteral("ComObjectInstanceRef"), &installation_reader_t::on_object},
        {QStringLiteral("Space"), &installation_reader_t::on_space},
        {QStringLiteral("BuildingPart"), &installation_reader_t::on_space},
        {QStringLiteral("DeviceInstanceRef"), &installation_reader_t::on_device_in_space},
        {QStringLiteral("Function"), &installation_reader_t::on_function},
        {QStringLiteral("GroupAddressRef"), &installation_reader_t::on_role},
        {QStringLiteral("GroupAddress"), &installation_reader_t::on_address},
    };
    const QString element = _walk.element().toString();
    if (const handler_t handler = handlers.value(element, nullptr)) {
        (this->*handler)(_walk);
    } else if (element == QLatin1String("Send") || element == QLatin1String("Receive")) {
        link(_walk.attribute("GroupAddressRefId"));
    } else if (element == QLatin1String("GroupRange")) {
        ranges.append(_walk.attribute("Name"));
    }
}

void installation_reader_t::on_end(QStringView _element) {
    if (_element == QLatin1String("GroupRange")) {
        ranges.removeLast();
    } else if (_element == QLatin1String("Space") || _element == QLatin1String("BuildingPart")) {
        spaces.removeLast();
    } else if (_element == QLatin1String("Function")) {
        in_function = false;
    } else if (_element == QLatin1String("ComObjectInstanceRef")) {
        object_place = -1;
    } else if (_element == QLatin1String("DeviceInstance")) {
        device = {};
    }
}

void installation_reader_t::on_device(const xml_walk_t& _walk) {
    device.device = short_id(_walk.attribute("Id"));
    device.hardware = _walk.attribute("Hardware2ProgramRefId");
}

void installation_reader_t::on_object(const xml_walk_t& _walk) {
    object = device;
    object.ref = _walk.attribute("RefId");
    object.dpt = first_type(_walk.attribute("DatapointType"));
    object_place = -1;
    const QString targets = _walk.attribute("Links");
    for (const QStringView target : QStringView(targets).split(u' ', Qt::SkipEmptyParts)) {
        link(target.toString());
    }
}

void installation_reader_t::link(const QString& _address_id) {
    if (object_place < 0) {
        object_place = links->objects.size();
        links->objects.append(object);
    }
    linked[short_id(_address_id)].append(object_place);
    ++kept;
}

void installation_reader_t::on_space(const xml_walk_t& _walk) {
    const QString type = _walk.attribute("Type");
    space_t space = spaces.isEmpty() ? space_t() : spaces.constLast();
    if (is_room(type)) {
        space.room = _walk.attribute("Name").simplified();
    }
    space.is_cabinet = space.is_cabinet || type == QLatin1String("DistributionBoard");
    spaces.append(space);
}

void installation_reader_t::on_device_in_space(const xml_walk_t& _walk) {
    // What is in a cabinet works for other rooms.
    if (!spaces.isEmpty() && !spaces.constLast().is_cabinet) {
        rooms.insert(short_id(_walk.attribute("RefId")), spaces.constLast().room);
        ++kept;
    }
}

void installation_reader_t::on_function(const xml_walk_t& _walk) {
    functions.append({.id = short_id(_walk.attribute("Id")),
                      .type = _walk.attribute("Type"),
                      .name = _walk.attribute("Name"),
                      .room = spaces.isEmpty() ? QString() : spaces.constLast().room,
                      .roles = {}});
    roles.append(QList<std::pair<QString, QString>>());
    in_function = true;
    ++kept;
}

void installation_reader_t::on_role(const xml_walk_t& _walk) {
    if (in_function) {
        roles.last().append({_walk.attribute("Role"), short_id(_walk.attribute("RefId"))});
        ++kept;
    }
}

void installation_reader_t::on_address(const xml_walk_t& _walk) {
    const QString written = _walk.attribute("Address");
    const auto address = knx::group_address_t::from_text(written);
    if (!address) {
        project->note(QStringLiteral("%1 is no group address and is left out.")
                          .arg(database::quoted(written)));
        return;
    }
    if (project->groups.contains(address->raw())) {
        project->note(QStringLiteral("%1 is there more than once; the first one is taken.")
                          .arg(project->address(address->raw())));
        return;
    }
    addresses.insert(short_id(_walk.attribute("Id")), address->raw());
    project->groups.insert(address->raw(), {.raw = address->raw(),
                                            .name = _walk.attribute("Name"),
                                            .description = _walk.attribute("Description"),
                                            .dpt = first_type(_walk.attribute("DatapointType")),
                                            .ranges = ranges,
                                            .room = {}});
}

void installation_reader_t::finish() {
    for (auto it = addresses.cbegin(); it != addresses.cend(); ++it) {
        const QList<qsizetype> objects = linked.value(it.key());
        if (!objects.isEmpty()) {
            links->of_address.insert(it.value(), objects);
            project->groups[it.value()].room = room_of(objects);
        }
    }
    for (qsizetype place = 0; place < functions.size(); ++place) {
        for (const auto& [role, id] : roles[place]) {
            if (addresses.contains(id)) {
                functions[place].roles.append({role, addresses.value(id)});
            }
        }
        project->functions.append(functions[place]);
    }
}

/// The one room that all devices in rooms are in; devices elsewhere do not count.
QString installation_reader_t::room_of(const QList<qsizetype>& _objects) const {
    QString room;
    for (const qsizetype place : _objects) {
        const QString own = rooms.value(links->objects[place].device);
        if (!own.isEmpty() && !room.isEmpty() && own != room) {
            return {};
        }
        room = own.isEmpty() ? room : own;
    }
    return room;
}

}  // namespace ets
