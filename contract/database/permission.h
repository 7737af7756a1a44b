#pragma once

#include <QLatin1String>
#include <QString>
#include <array>
#include <optional>

/// What a user may do with an element: the bits of a grant, their words, and how a request ends.
namespace database::permission {

inline constexpr int read_bit = 1;
inline constexpr int write_bit = 2;
inline constexpr int all_bits = read_bit | write_bit;

inline constexpr int code_accepted = 202;
inline constexpr int code_unauthorized = 401;  ///< the user's bits do not suffice
inline constexpr int code_not_found = 404;     ///< there is no such element or function

inline constexpr QLatin1String deny("deny");
inline constexpr QLatin1String read("read");
inline constexpr QLatin1String write("write");
inline constexpr QLatin1String readwrite("readwrite");

/// The word for the bits 0 to 3; an empty text for any other number.
inline QString word(int _bits) {
    constexpr std::array words{deny, read, write, readwrite};
    return _bits >= 0 && _bits <= all_bits ? QString(words[size_t(_bits)]) : QString();
}

/// The bits of a word; nothing for any other text.
inline std::optional<int> bits(const QString& _word) {
    for (int candidate = 0; candidate <= all_bits; ++candidate) {
        if (word(candidate) == _word) {
            return candidate;
        }
    }
    return std::nullopt;
}

/// Whether a grant has one of the bits of @p _mask. The low 32 bits of the grant count, and a
/// negative result is none.
constexpr bool allows(quint64 _grant, unsigned int _mask) {
    return static_cast<qint32>(static_cast<quint32>(_grant) & _mask) > 0;
}

/// The code for a user with this grant who needs one of the bits of @p _mask.
constexpr int verdict(quint64 _grant, unsigned int _mask) {
    return allows(_grant, _mask) ? code_accepted : code_unauthorized;
}

}  // namespace database::permission
