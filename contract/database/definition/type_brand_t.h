#pragma once

#include <QString>

namespace database::definition {

/// The brand a device is sold under. A value type; any thread.
class type_brand_t {
 public:
    /// The maker's own brand: what applies to a device of no known brand.
    static const type_brand_t KELMA;
    static const type_brand_t DOMIVRA;
    static const type_brand_t LUNORA;

    /// The brand of that name, in whatever case a device's firmware writes it; KELMA for others.
    static type_brand_t fromString(const QString& _name);

    QString ToString() const { return name; }
    bool operator==(const type_brand_t&) const = default;

 private:
    explicit type_brand_t(QString _name) : name(std::move(_name)) {}

    QString name;
};

}  // namespace database::definition
