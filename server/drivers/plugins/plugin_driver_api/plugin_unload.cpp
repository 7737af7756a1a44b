// What the library takes back when it is unloaded. Qt's containers of converters see to themselves;
// the registry of types would keep pointing at descriptions that are gone.
#include <dlfcn.h>

#include <QAssociativeIterable>
#include <QHash>
#include <QMetaType>

namespace {

/// Whether @p _address is in this library.
bool is_ours(const void* _address) {
    Dl_info there = {};
    Dl_info here = {};
    return dladdr(_address, &there) != 0 &&
           dladdr(reinterpret_cast<const void*>(&is_ours), &here) != 0 &&
           there.dli_fbase == here.dli_fbase;
}

/// Takes the type out if it was registered with the description in this library: the program or
/// another driver may have been first, or share theirs.
void forget(QMetaType _type) {
    const int id = _type.iface()->typeId.loadRelaxed();
    if (is_ours(_type.iface()) && QMetaType::isRegistered(id) &&
        QMetaType(id).iface() == _type.iface()) {
        QMetaType::unregisterMetaType(_type);
    }
}

struct unload_t {
    ~unload_t() {
        forget(QMetaType::fromType<QHash<QString, QString>>());
        forget(QMetaType::fromType<QIterable<QMetaAssociation>>());
    }
};

/// Made while the library is loaded, before any type is registered, and so destroyed after what the
/// registration left to be destroyed.
const unload_t at_unload;

}  // namespace
