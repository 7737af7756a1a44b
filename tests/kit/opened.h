#pragma once

namespace kit {

/// Opens a private member to a test without a word in the product: an explicit instantiation may
/// name what is private. At global scope:
///
///     KIT_OPEN(server_mutex_t, interfaces::mqtt_server_t, mutex, base::mutex_t);
///     (server->*opened(kit::server_mutex_t())).tryLock();
///
/// For what has no other witness: a lock, a field's place. Behaviour is tested through signals.
template <class Word, typename Word::member_t Member>
struct open_t {
    friend typename Word::member_t opened(Word) { return Member; }
};

}  // namespace kit

/// kit::@p word becomes a type that stands for @p owner's @p member, whose type comes last.
#define KIT_OPEN(word, owner, member, ...)        \
    namespace kit {                               \
    struct word {                                 \
        using field_t = __VA_ARGS__;              \
        using member_t = field_t owner::*;        \
        friend member_t opened(word);             \
    };                                            \
    template struct open_t<word, &owner::member>; \
    }                                             \
    static_assert(true)
