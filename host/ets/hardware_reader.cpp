#include "ets/hardware_reader.h"

#include "ets/xml_walk_t.h"

namespace ets {

base::result_t read_hardware(QIODevice* _file, const QString& _name,
                             QHash<QString, QString>* _programs) {
    xml_walk_t walk(_file, _name);
    QString hardware;
    while (walk.next()) {
        if (walk.element() == QLatin1String("Hardware2Program")) {
            hardware = walk.is_start() ? walk.attribute("Id") : QString();
        } else if (walk.is_start() && walk.element() == QLatin1String("ApplicationProgramRef") &&
                   !hardware.isEmpty() && !_programs->contains(hardware)) {
            _programs->insert(hardware, walk.attribute("RefId"));
        }
    }
    return walk.result();
}

}  // namespace ets
