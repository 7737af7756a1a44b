#include "database/definition/type_brand_t.h"

namespace database::definition {

const type_brand_t type_brand_t::KELMA{QStringLiteral("Kelma")};
const type_brand_t type_brand_t::DOMIVRA{QStringLiteral("Domivra")};
const type_brand_t type_brand_t::LUNORA{QStringLiteral("Lunora")};

type_brand_t type_brand_t::fromString(const QString& _name) {
    for (const type_brand_t& brand : {KELMA, DOMIVRA, LUNORA}) {
        if (brand.name.compare(_name, Qt::CaseInsensitive) == 0) {
            return brand;
        }
    }
    return KELMA;
}

}  // namespace database::definition
