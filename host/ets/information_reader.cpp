#include "ets/information_reader.h"

#include "ets/xml_walk_t.h"

namespace ets {

using base::result_t;

namespace {

knx::address_style_t style_of(const QString& _word) {
    using knx::address_style_t;
    if (_word == QLatin1String("Free")) {
        return address_style_t::free;
    }
    return _word == QLatin1String("TwoLevel") ? address_style_t::two_levels
                                              : address_style_t::three_levels;
}

}  // namespace

bool is_project_root(QStringView _element, QStringView _namespace) {
    return _element == QLatin1String("KNX") &&
           _namespace.startsWith(QLatin1String("http://knx.org/xml/project/"));
}

result_t read_information(QIODevice* _file, const QString& _name, project_t* _project) {
    xml_walk_t walk(_file, _name);
    while (walk.next()) {
        if (!walk.is_start()) {
            continue;
        }
        if (walk.depth() == 1 && !is_project_root(walk.element(), walk.element_namespace())) {
            return result_t::failed(_name + QStringLiteral(" is no file of ETS."));
        }
        if (walk.element() == QLatin1String("Project") && walk.depth() == 2) {
            _project->id = walk.attribute("Id");
        } else if (walk.element() == QLatin1String("ProjectInformation")) {
            _project->style = style_of(walk.attribute("GroupAddressStyle"));
        }
    }
    return walk.result();
}

}  // namespace ets
