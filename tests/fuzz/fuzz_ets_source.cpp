#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "database/name_rules.h"
#include "ets/groups_text.h"
#include "ets/house_document.h"
#include "ets/source_reader.h"
#include "fuzz/fuzz_input.h"

namespace {

/// What is made of anything that was read can be written down and names nothing against the rules.
void expect_a_house(ets::project_t _project) {
    FUZZ_EXPECT(QJsonDocument::fromJson(ets::groups_text(_project)).isArray());
    const QJsonObject house = QJsonDocument::fromJson(ets::house_document(&_project, {})).object();
    FUZZ_EXPECT(database::topic_error(house[QLatin1String("topic")].toString()).isEmpty());
    const QJsonObject elements = house[QLatin1String("elements")].toObject();
    for (auto it = elements.begin(); it != elements.end(); ++it) {
        const QString name = it.value()[QLatin1String("name")].toString();
        FUZZ_EXPECT(database::identifier_error(it.key()).isEmpty());
        FUZZ_EXPECT(database::plain_text_error(name).isEmpty());
    }
    for (const ets::group_t& group : std::as_const(_project.groups)) {
        FUZZ_EXPECT(group.raw != 0);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* _data, std::size_t _size) {
    const QByteArray bytes(reinterpret_cast<const char*>(_data), qsizetype(_size));
    ets::reading_t how;
    how.limits.entry_bytes = 1 << 20;
    how.limits.total_bytes = 4 << 20;
    how.limits.links = 10'000;
    const auto read = ets::read_source(bytes, QStringLiteral("x"), how);
    FUZZ_EXPECT(read.is_ok() || read.error.startsWith(QLatin1String("x: ")));
    if (read.is_ok()) {
        expect_a_house(read.value);
    }
    return 0;
}
