// Signals and slots of every class of the plugin: queued calls and signature strings go by them.
#include <QAssociativeIterable>
#include <QMetaMethod>
#include <QTest>

#include "drivers/plugins/plugin_driver_api/data/data_api_element_object_v1_t.h"
#include "drivers/plugins/plugin_driver_api/data/data_api_elements_v1_t.h"
#include "drivers/plugins/plugin_driver_api/mqtt/api_v1/mqtt_server_api_v1_t.h"
#include "drivers/plugins/plugin_driver_api/plugin_driver_api_t.h"
#include "utility/http_read_config_server_t.h"
#include "utility/torlan_option_t.h"

namespace {

const QMetaObject* const classes[] = {
    &interfaces::plugin_driver_api_t::staticMetaObject,
    &interfaces::mqtt_server_t::staticMetaObject,
    &interfaces::mqtt_server_api_base_t::staticMetaObject,
    &interfaces::mqtt_server_api_v1_t::staticMetaObject,
    &interfaces::data_api_t::staticMetaObject,
    &interfaces::data_api_element_object_t::staticMetaObject,
    &interfaces::data_api_element_object_v1_t::staticMetaObject,
    &interfaces::data_api_elements_t::staticMetaObject,
    &interfaces::data_api_elements_v1_t::staticMetaObject,
    &utility::http_read_config_server_t::staticMetaObject,
    &utility::torlan_option_t::staticMetaObject,
};

/// "slot public void name(type name, ...)", every word as the meta-object has it.
QByteArray line_of(const QMetaMethod& _method) {
    static const char* const kinds[] = {"method", "signal", "slot", "constructor"};
    static const char* const accesses[] = {"private", "protected", "public"};
    const QByteArrayList types = _method.parameterTypes();
    const QByteArrayList names = _method.parameterNames();
    QByteArrayList parameters;
    for (qsizetype i = 0; i < types.size(); ++i) {
        parameters.append((types[i] + ' ' + names[i]).trimmed());
    }
    return QByteArray(kinds[_method.methodType()]) + ' ' + accesses[_method.access()] + ' ' +
           _method.typeName() + ' ' + _method.name() + '(' + parameters.join(", ") + ')';
}

const QMetaObject* class_of(const QByteArray& _name) {
    for (const QMetaObject* meta : classes) {
        if (_name == meta->className()) {
            return meta;
        }
    }
    return nullptr;
}

}  // namespace

class tst_meta_objects : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void classes_have_their_base_and_nothing_but_methods_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("base");
        QTest::addColumn<int>("methods");
        const auto row = [](const char* name, const char* base, int methods) {
            QTest::newRow(name) << QByteArray(name) << QByteArray(base) << methods;
        };
        row("interfaces::plugin_driver_api_t", "QObject", 9);
        row("interfaces::mqtt_server_t", "QObject", 13);
        row("interfaces::mqtt_server_api_base_t", "QObject", 3);
        row("interfaces::mqtt_server_api_v1_t", "interfaces::mqtt_server_api_base_t", 0);
        row("interfaces::data_api_t", "QObject", 0);
        row("interfaces::data_api_element_object_t", "interfaces::data_api_t", 7);
        row("interfaces::data_api_element_object_v1_t", "interfaces::data_api_element_object_t", 0);
        row("interfaces::data_api_elements_t", "interfaces::data_api_t", 15);
        row("interfaces::data_api_elements_v1_t", "interfaces::data_api_elements_t", 0);
        row("utility::http_read_config_server_t", "QObject", 0);
        row("utility::torlan_option_t", "QObject", 0);
    }
    void classes_have_their_base_and_nothing_but_methods() {
        QFETCH(QByteArray, name);
        QFETCH(QByteArray, base);
        QFETCH(int, methods);
        const QMetaObject* meta = class_of(name);
        QVERIFY(meta != nullptr);
        QCOMPARE(QByteArray(meta->superClass()->className()), base);
        QCOMPARE(meta->methodCount() - meta->methodOffset(), methods);
        QCOMPARE(meta->propertyCount() - meta->propertyOffset(), 0);
        QCOMPARE(meta->enumeratorCount() - meta->enumeratorOffset(), 0);
        QCOMPARE(meta->classInfoCount() - meta->classInfoOffset(), 0);
        QCOMPARE(meta->constructorCount(), 0);
    }

    void methods_stand_in_index_order_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArrayList>("expected");
        const auto row = [](const char* name, const QByteArrayList& expected) {
            QTest::newRow(name) << QByteArray(name) << expected;
        };
        row("interfaces::plugin_driver_api_t",
            {"slot public void init_event_to_dispatcher(bool _enable, QObject* _object)",
             "slot public bool finalize_database_initialization()",
             "slot public void start(bool _init)",
             "slot public bool finalize_comunication_initialization()",
             "slot public void init_comunication_event(bool _init)",
             "slot private void onComunicationAPIMessageIncoming(QString _version, QString "
             "_username, QString _client_id, QString _type, QString _topic, QJsonObject _payload, "
             "bool _retain)",
             "slot private void publish_message(QString _topic, QJsonObject _payload, bool "
             "_retain)",
             "slot private void publish_delete_message(QString _topic, bool _retain)",
             "slot private void subscription_status_api(bool _value)"});
        row("interfaces::mqtt_server_t",
            {"signal public void publish_message(QString _topic, QJsonObject _payload, bool "
             "_retain)",
             "signal public void publish_delete_message(QString _topic, bool _retain)",
             "signal public void subscription_status_api(bool _value)",
             "slot public void init_route_path(bool _enable)",
             "slot public void enable_change(QString _version, bool _enable)",
             "slot public void onUpdateElement(QString _id_element, QStringList _functions)",
             "slot public void onUpdateElements(QStringList _ids_element)",
             "slot private void on_acl_changes()",
             "slot private void on_value_change(QString _id_element, QStringList _functions)",
             "slot private void on_publish_message(QString _topic, QJsonObject _payload, bool "
             "_retain)",
             "slot private void on_reset_api_elements(bool _start, QStringList _keys)",
             "slot private void add_acl_element(QString _username, QString _id_element, QString "
             "_permission)",
             "slot private void remove_acl_element(QString _username, QString _id_element)"});
        row("interfaces::mqtt_server_api_base_t",
            {"signal public void publish_message(QString _topic, QJsonObject _payload, bool "
             "_retain)",
             "signal public void enable_change(QString _version, bool _enable)",
             "slot public void response(QString _username, QString _request_topic, QJsonObject "
             "_request_payload, QJsonObject _response_payload)"});
        row("interfaces::data_api_element_object_t",
            {"signal public void value_change(QString _id_element, QHash<QString,QString> "
             "function_values, QStringList _functions)",
             "signal public void add_acl_element(QString _username, QString _id_element, QString "
             "_permission)",
             "signal public void remove_acl_element(QString _username, QString _id_element)",
             "slot private void update_value(QString _key)",
             "slot private void onRealtimeChangeScenaryObjects(QJsonObject, QString _key)",
             "slot private void onRealtimeChangeItem(QJsonObject _packet, QString _key)",
             "slot private void onPersistentStatusThermo(QJsonObject _packet, QString _key)"});
        row("interfaces::data_api_elements_t",
            {"signal public void value_change(QString _id_element, QStringList _functions)",
             "signal public void on_reset_api_elements(bool _start, QStringList _keys)",
             "signal public void acl_changes()",
             "signal public void add_acl_element(QString _username, QString _id_element, QString "
             "_permission)",
             "signal public void remove_acl_element(QString _username, QString _id_element)",
             "slot public void onPersistentChangeDatabase(QJsonObject _packet)",
             "slot public void onRealtimeChangeDatabase(QJsonObject _packet)",
             "slot public void onPersistentChangeElements(QJsonObject _packet)",
             "slot public void onPersistentChangeElement(QJsonObject _packet, QString _key)",
             "slot public void onRealtimeChangeItems(QJsonObject _packet)",
             "slot public void onPersistentChangeUsers(QJsonObject _packet)",
             "slot public void onPersistentChangeUser(QJsonObject _packet, QString _key)",
             "slot private void element_value_change(QString _id_element, QHash<QString,QString> "
             "function_values, QStringList _functions)",
             "slot private void element_add_acl_element(QString _username, QString _id_element, "
             "QString _permission)",
             "slot private void element_remove_acl_element(QString _username, QString "
             "_id_element)"});
    }
    void methods_stand_in_index_order() {
        QFETCH(QByteArray, name);
        QFETCH(QByteArrayList, expected);
        const QMetaObject* meta = class_of(name);
        QVERIFY(meta != nullptr);
        QByteArrayList actual;
        for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
            actual.append(line_of(meta->method(i)));
        }
        QCOMPARE(actual, expected);
    }

    void the_hash_of_values_travels_through_queued_connections() {
        const QMetaType type = QMetaType::fromType<QHash<QString, QString>>();
        const QMetaObject& meta = interfaces::data_api_element_object_t::staticMetaObject;
        QCOMPARE(meta.method(meta.methodOffset()).parameterMetaType(1), type);
        QVERIFY(QMetaType::canView(type, QMetaType::fromType<QAssociativeIterable>()));
        QVERIFY(type.isEqualityComparable());
    }
};

QTEST_GUILESS_MAIN(tst_meta_objects)
#include "tst_meta_objects.moc"
