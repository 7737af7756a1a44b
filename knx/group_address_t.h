#pragma once

#include <QMetaType>
#include <QString>
#include <optional>

namespace knx {

/// How a project writes its group addresses.
enum class address_style_t { free, two_levels, three_levels };

/// A group address, 1 to 65535 on the bus.
class group_address_t {
 public:
    constexpr group_address_t() = default;
    explicit constexpr group_address_t(quint16 _raw) : number(_raw) {}

    /// "1/2/3" (up to 31/7/255), "1/2" (up to 31/2047) or "2563"; nothing: it is none. 0, in
    /// whatever style, addresses every device.
    static std::optional<group_address_t> from_text(const QString& _text);

    /// The style of a text that from_text() takes.
    static address_style_t style_of(const QString& _text);

    QString text(address_style_t _style = address_style_t::three_levels) const;

    constexpr quint16 raw() const { return number; }
    constexpr bool operator==(const group_address_t&) const = default;
    constexpr auto operator<=>(const group_address_t&) const = default;

 private:
    quint16 number = 0;
};

inline size_t qHash(group_address_t _address, size_t _seed = 0) {
    return ::qHash(_address.raw(), _seed);
}

}  // namespace knx
