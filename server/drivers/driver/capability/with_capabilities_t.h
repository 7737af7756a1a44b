#pragma once

#include <cstring>

namespace interfaces {

/// Mixes optional host services into a driver and finds them by name.
///
/// A driver derives from its base first and from this second, with itself as first argument.
/// Each capability brings its class name without namespace as `capability_name`.
template <class Driver, class... Capabilities>
class WithCapabilities : public Capabilities... {
 public:
    /// The sub-object of the capability with exactly this class name, else null.
    void* dispatchCapability(const char* name) {
        void* found = nullptr;
        (take<Capabilities>(name, found), ...);
        return found;
    }

 private:
    template <class Capability>
    void take(const char* name, void*& found) {
        if (name != nullptr && std::strcmp(name, Capability::capability_name) == 0) {
            found = static_cast<Capability*>(this);
        }
    }
};

}  // namespace interfaces
