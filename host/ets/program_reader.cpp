#include "ets/program_reader.h"

#include "ets/data_point_type.h"
#include "ets/xml_walk_t.h"

namespace ets {

using base::result_t;

result_t read_program(QIODevice* _file, const QString& _name, const QSet<QString>& _wanted,
                      QHash<QString, QString>* _types, const progress_t& _progress) {
    constexpr qsizetype most_objects = 500'000;
    QHash<QString, QString> of_objects;
    QHash<QString, QString> object_of;
    xml_walk_t walk(_file, _name, _progress);
    while (walk.next()) {
        if (!walk.is_start()) {
            continue;
        }
        if (walk.element() == QLatin1String("ComObject")) {
            const QString type = first_type(walk.attribute("DatapointType"));
            if (!type.isEmpty()) {
                of_objects.insert(walk.attribute("Id"), type);
            }
        } else if (walk.element() == QLatin1String("ComObjectRef")) {
            const QString id = walk.attribute("Id");
            if (!_wanted.contains(id)) {
                continue;
            }
            const QString type = first_type(walk.attribute("DatapointType"));
            if (type.isEmpty()) {
                object_of.insert(id, walk.attribute("RefId"));
            } else {
                _types->insert(id, type);
            }
        }
        if (of_objects.size() > most_objects) {
            return result_t::failed(_name + QStringLiteral(" holds more than any program."));
        }
    }
    for (auto it = object_of.cbegin(); it != object_of.cend(); ++it) {
        if (of_objects.contains(it.value())) {
            _types->insert(it.key(), of_objects.value(it.value()));
        }
    }
    return walk.result();
}

}  // namespace ets
