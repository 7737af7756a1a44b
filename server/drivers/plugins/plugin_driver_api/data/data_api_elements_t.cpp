#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"

#include "database/element_type.h"
#include "logs/log_line.h"

namespace interfaces {

namespace {
constexpr const char* source = "server/drivers/plugins/plugin_driver_api/data/data_api_elements_t";
constexpr int reload_delay_ms = 100;
constexpr auto queued_unique =
    static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection);
}  // namespace

data_api_elements_t::data_api_elements_t(QPointer<database::database_t> db, QObject* _parent)
    : data_api_t(db, _parent),
      reload_timer(new utility::timer_debounce_t<>(this, reload_delay_ms, [this]() { reload(); })) {
}

data_api_elements_t::~data_api_elements_t() {
    utility::log_line(QStringLiteral("Destructor ~data_api_elements_t"), 4, "~data_api_elements_t",
                      source, 31);
}

void data_api_elements_t::reload() {
    // Written by a lambda in the product's log: keep the function's name.
    utility::log_line(QStringLiteral("Reload data api ") + getName() + QStringLiteral(" ..."), 3,
                      "operator()", source, 24);
    reset();
    init();
}

void data_api_elements_t::init() {
    const base::mutex_locker_t locker(&lock);
    api_usernames.clear();
    api_usernames = get_api_usernames(true);
    const QStringList ids = view.element_ids();
    for (const QString& id : ids) {
        addElement(id);
    }
    init_event(true);
    Q_EMIT acl_changes();
}

void data_api_elements_t::reset() {
    const base::mutex_locker_t locker(&lock);
    init_event(false);
    const QStringList ids = elements.keys();
    Q_EMIT on_reset_api_elements(true, ids);
    for (const QString& id : ids) {
        removeElement(id);
    }
    elements.clear();
    acl.clear();
    Q_EMIT on_reset_api_elements(false, elements.keys());
}

void data_api_elements_t::reinit() {
    const base::mutex_locker_t locker(&lock);
    const QStringList known = elements.keys();
    for (const QString& id : known) {
        if (!view.has_element(id)) {
            removeElement(id);
        }
    }
    api_usernames = get_api_usernames(true);
    const QStringList ids = view.element_ids();
    for (const QString& id : ids) {
        addElement(id);
    }
    Q_EMIT acl_changes();
}

void data_api_elements_t::addElement(const QString& id) {
    const base::mutex_locker_t locker(&lock);
    const auto* element = view.element(id);
    if (element == nullptr || !database::element_type::is_exposed(element->getType())) {
        removeElement(id);
        return;
    }
    if (data_api_element_object_t* known = elements.value(id)) {
        known->init();
    } else {
        load_new_element(id);
    }
    populate_acl(id);
}

void data_api_elements_t::load_new_element(const QString& _id) {
    // It loads itself while nobody listens; what it says then is said again below.
    auto* element = new data_api_element_object_t(database, _id, this);
    elements.insert(_id, element);
    connect(element,
            SIGNAL(value_change(const QString&, QHash<QString, QString>, const QStringList&)), this,
            SLOT(element_value_change(const QString&, QHash<QString, QString>, const QStringList&)),
            queued_unique);
    connect(element, SIGNAL(add_acl_element(const QString&, const QString&, QString)), this,
            SLOT(element_add_acl_element(const QString&, const QString&, QString)), queued_unique);
    connect(element, SIGNAL(remove_acl_element(const QString&, const QString&)), this,
            SLOT(element_remove_acl_element(const QString&, const QString&)), queued_unique);
    Q_EMIT value_change(_id, element->getFunctionIds().keys());
}

void data_api_elements_t::removeElement(const QString& id) {
    const base::mutex_locker_t locker(&lock);
    data_api_element_object_t* element = elements.take(id);
    if (element == nullptr) {
        return;
    }
    element->deleteLater();
    populate_acl(id);
    Q_EMIT acl_changes();
}

void data_api_elements_t::check_permission() {
    const base::mutex_locker_t locker(&lock);
    for_each_element([this](const QString& id, data_api_element_object_t& element) {
        element.update_permission();
        populate_acl(id);
    });
    Q_EMIT acl_changes();
}

void data_api_elements_t::populate_acl() {
    const base::mutex_locker_t locker(&lock);
    acl.clear();
    const QStringList ids = elements.keys();
    for (const QString& id : ids) {
        populate_acl(id);
    }
}

void data_api_elements_t::populate_acl(const QString& id) {
    const base::mutex_locker_t locker(&lock);
    data_api_element_object_t* element = elements.value(id);
    if (element == nullptr) {
        for (auto user = acl.begin(); user != acl.end(); ++user) {
            if (user->remove(id)) {
                Q_EMIT remove_acl_element(user.key(), id);
            }
        }
        return;
    }
    if (former) {
        element->share_rights(*former);
    }
    former = element;
    for (const auto& row : element->words()) {
        acl[row.key].insert(element->getIdElement(), row.value);
    }
}

bool data_api_elements_t::getEnabled() const {
    return enabled;
}

void data_api_elements_t::setEnabled(bool enable) {
    reset();
    if (enable) {
        init();
    }
    enabled = enable;
}

QStringList data_api_elements_t::get_api_usernames(bool _enabled) const {
    return view.usernames(_enabled);
}

QStringList data_api_elements_t::get_api_usernames(const QString& _version, bool _enabled) const {
    return view.usernames(_version, _enabled);
}

QStringList data_api_elements_t::get_api_users(bool _enabled) const {
    return view.user_ids(_enabled);
}

QHash<QString, data_api_element_object_t*> data_api_elements_t::get_data_api_elements() {
    const base::mutex_locker_t locker(&lock);
    return elements;
}

QPointer<data_api_element_object_t> data_api_elements_t::get_data_api_element_object(
    const QString& id) {
    const base::mutex_locker_t locker(&lock);
    return elements.value(id);
}

data_api_elements_t::acl_t data_api_elements_t::get_data_api_elements_acl() {
    return acl;
}

void data_api_elements_t::for_each_element(
    const std::function<void(const QString&, data_api_element_object_t&)>& _visit) {
    const base::mutex_locker_t locker(&lock);
    for (auto element = elements.cbegin(); element != elements.cend(); ++element) {
        _visit(element.key(), *element.value());
    }
}

}  // namespace interfaces
