#pragma once

#include <QMetaObject>
#include <atomic>
#include <memory>

#include "base/locks.h"
#include "comunication/protoserver_t.h"
#include "drivers/driver/capability/call_lifetime_t.h"
#include "logs/log_line.h"

namespace interfaces {

/// Capability of drivers that use the host's MQTT endpoint.
///
/// The order of the virtual operations is binary contract with the host: keep it.
class IComunication {
 public:
    static constexpr const char* capability_name = "IComunication";

    IComunication();
    Q_DISABLE_COPY_MOVE(IComunication)

    /// Called once the endpoint is set.
    virtual bool finalize_comunication_initialization() = 0;
    /// Connects (true) or disconnects (false) the driver from the endpoint's signals.
    virtual void init_comunication_event(bool init) = 0;
    virtual ~IComunication();
    /// Takes the endpoint; it is not owned. Null: logged, the former one stays, false.
    /// Otherwise the result of finalize_comunication_initialization().
    virtual bool init_comunication(comunication::protoserver_t* comunication) TORLAN_EXCLUDES(lock);

    /// The endpoint or null. Any thread.
    comunication::protoserver_t* Comunication() TORLAN_EXCLUDES(lock);

 protected:
    /// Posts @p _call, a callable that takes the endpoint, to the endpoint's own thread. It runs
    /// there under the read lock; without an endpoint, now or then, a warning is logged instead.
    /// A call whose driver has gone meanwhile does nothing. Any thread.
    template <class Call>
    void Comunication(Call _call);

    /// Makes every call that is still queued do nothing, after waiting for a running one. A
    /// driver calls it first thing in its destructor, before its own members go.
    void end_calls() { lifetime->end(); }

    /// Written under the lock; the early exit of Comunication(call) reads it without. A driver
    /// that outlives its endpoint sets it to null: calls are skipped from then on.
    std::atomic<comunication::protoserver_t*> comunication;
    base::read_write_lock_t lock;  ///< guards comunication; non-recursive

 private:
    static constexpr const char* comunication_source =
        "server/drivers/driver/capability/plugin_driver_IComunication";

    const std::shared_ptr<call_lifetime_t> lifetime;
};

template <class Call>
void IComunication::Comunication(Call _call) {
    comunication::protoserver_t* endpoint = comunication.load();
    if (endpoint == nullptr) {
        utility::log_line(QStringLiteral("Comunication is nullptr, operation skipped"), 3,
                          "Comunication", comunication_source, 57);
        return;
    }
    auto guarded = [this, alive = lifetime, call = std::move(_call)]() {
        alive->run([this, &call]() {
            const base::read_locker_t locker(&lock);
            comunication::protoserver_t* current = comunication.load();
            if (current == nullptr) {
                utility::log_line(QStringLiteral("Comunication is nullptr, operation skipped"), 3,
                                  "operator()", comunication_source, 64);
                return;
            }
            call(current);
        });
    };
    QMetaObject::invokeMethod(endpoint, std::move(guarded), Qt::QueuedConnection);
}

}  // namespace interfaces
