#include "ets/linked_types_t.h"

#include "ets/hardware_reader.h"
#include "ets/program_object.h"
#include "ets/program_reader.h"

namespace ets {

using base::result_t;

linked_types_t::linked_types_t(zip_t* _zip, const QStringList& _names, const links_t& _links)
    : zip(_zip), links(_links) {
    for (const QString& name : _names) {
        path_of.insert(name.toLower(), name);
    }
}

result_t linked_types_t::resolve(project_t* _project, const progress_t& _progress) {
    QList<quint16> untyped;
    for (const group_t& group : std::as_const(_project->groups)) {
        if (group.dpt.isEmpty() && links.of_address.contains(group.raw)) {
            untyped.append(group.raw);
        }
    }
    result_t read = read_hardware_files(untyped);
    if (read.is_ok()) {
        read = read_programs(untyped, _progress);
    }
    if (!read.is_ok()) {
        return read;
    }
    for (const quint16 raw : std::as_const(untyped)) {
        for (const qsizetype place : links.of_address.value(raw)) {
            const QString type = type_of(links.objects[place]);
            if (!type.isEmpty()) {
                _project->groups[raw].dpt = type;
                break;
            }
        }
    }
    return {};
}

bool linked_types_t::needs_program(const com_object_t& _object) const {
    return _object.dpt.isEmpty();
}

// Only what refers to objects by the short form, as later projects do, has to be told the program.
result_t linked_types_t::read_hardware_files(const QList<quint16>& _addresses) {
    QSet<QString> wanted;
    for (const quint16 raw : _addresses) {
        for (const qsizetype place : links.of_address.value(raw)) {
            const com_object_t& object = links.objects[place];
            const QString maker = manufacturer_in(object.hardware);
            if (needs_program(object) && program_in(object.ref).isEmpty() && !maker.isEmpty()) {
                wanted.insert(path_of.value((maker + QStringLiteral("/Hardware.xml")).toLower()));
            }
        }
    }
    wanted.remove({});
    if (wanted.isEmpty()) {
        return {};
    }
    return zip->visit(wanted, [this](const QString& _name, QIODevice* _file) {
        return read_hardware(_file, _name, &programs);
    });
}

result_t linked_types_t::read_programs(const QList<quint16>& _addresses,
                                       const progress_t& _progress) {
    QHash<QString, QSet<QString>> wanted;  // path in the zip -> references
    for (const quint16 raw : _addresses) {
        for (const qsizetype place : links.of_address.value(raw)) {
            const com_object_t& object = links.objects[place];
            const QString program = program_of(object);
            const QString file = manufacturer_in(program) + u'/' + program + QStringLiteral(".xml");
            const QString path = path_of.value(file.toLower());
            if (needs_program(object) && !path.isEmpty()) {
                wanted[path].insert(full_ref(object));
            }
        }
    }
    if (wanted.isEmpty()) {
        return {};
    }
    const QSet<QString> paths(wanted.keyBegin(), wanted.keyEnd());
    return zip->visit(paths, [&](const QString& _name, QIODevice* _file) {
        return read_program(_file, _name, wanted.value(_name), &types, _progress);
    });
}

QString linked_types_t::program_of(const com_object_t& _object) const {
    const QString named = program_in(_object.ref);
    if (!named.isEmpty()) {
        return named;
    }
    const QString known = programs.value(_object.hardware);
    return known.isEmpty() ? usual_program(_object.hardware) : known;
}

QString linked_types_t::full_ref(const com_object_t& _object) const {
    const QString ref = without_instances(_object.ref);
    return program_in(ref).isEmpty() ? program_of(_object) + u'_' + ref : ref;
}

QString linked_types_t::type_of(const com_object_t& _object) const {
    return _object.dpt.isEmpty() ? types.value(full_ref(_object)) : _object.dpt;
}

}  // namespace ets
