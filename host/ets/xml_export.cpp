#include "ets/xml_export.h"

#include <QBuffer>

#include "database/name_rules.h"
#include "ets/data_point_type.h"
#include "ets/xml_walk_t.h"

namespace ets {

using base::result_of_t;
using base::result_t;

namespace {

bool is_root(const xml_walk_t& _walk) {
    return _walk.element() == QLatin1String("GroupAddress-Export") &&
           _walk.element_namespace().startsWith(QLatin1String("http://knx.org/xml/ga-export/"));
}

void add_address(const xml_walk_t& _walk, const QStringList& _ranges, project_t* _project) {
    const QString written = _walk.attribute("Address");
    const auto address = knx::group_address_t::from_text(written);
    if (!address) {
        _project->note(QStringLiteral("%1 is no group address and is left out.")
                           .arg(database::quoted(written)));
        return;
    }
    _project->style =
        _project->groups.isEmpty() ? knx::group_address_t::style_of(written) : _project->style;
    if (_project->groups.contains(address->raw())) {
        _project->note(QStringLiteral("%1 is there more than once; the first one is taken.")
                           .arg(_project->address(address->raw())));
        return;
    }
    _project->groups.insert(address->raw(), {.raw = address->raw(),
                                             .name = _walk.attribute("Name"),
                                             .description = _walk.attribute("Description"),
                                             .dpt = last_type(_walk.attribute("DPTs")),
                                             .ranges = _ranges,
                                             .room = {}});
}

}  // namespace

result_of_t<project_t> read_xml_export(const QByteArray& _bytes, const progress_t& _progress) {
    QBuffer buffer;
    buffer.setData(_bytes);
    buffer.open(QIODevice::ReadOnly);
    xml_walk_t walk(&buffer, QStringLiteral("The export"), _progress);
    project_t project;
    QStringList ranges;
    while (walk.next()) {
        if (walk.depth() == 1 && !is_root(walk)) {
            return result_t::failed(
                QStringLiteral("It is XML, but no list of group addresses that ETS exports."));
        }
        if (walk.element() == QLatin1String("GroupRange")) {
            if (walk.is_start()) {
                ranges.append(walk.attribute("Name"));
            } else {
                ranges.removeLast();
            }
        } else if (walk.is_start() && walk.element() == QLatin1String("GroupAddress")) {
            add_address(walk, ranges, &project);
        }
    }
    const result_t read = walk.result();
    if (!read.is_ok()) {
        return read;
    }
    return project;
}

}  // namespace ets
