#pragma once

#include <QObject>
#include <memory>

#include "drivers/plugins/plugin_driver_api/data/data_api_elements_t.h"
#include "kit/furnish.h"

/// A test on the small home: the database and the collection of its elements, new for each slot.
class furnished_test_t : public QObject {
 protected:
    void furnish(bool _elements_enabled) {
        home = std::make_unique<fakes::memory_database_t>();
        kit::furnish(*home);
        elements = std::make_unique<interfaces::data_api_elements_t>(home->get(), nullptr);
        elements->setEnabled(_elements_enabled);
    }
    /// What a test built on the elements goes first.
    void clear() {
        elements.reset();
        home.reset();
    }

    std::unique_ptr<fakes::memory_database_t> home;
    std::unique_ptr<interfaces::data_api_elements_t> elements;
};
