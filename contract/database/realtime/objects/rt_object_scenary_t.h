#pragma once

namespace database::live {
class table_writer_t;
}

namespace database::realtime::objects {

/// Whether a scenario is executed.
class rt_object_scenary_t {
 public:
    explicit rt_object_scenary_t(bool _execution) : execution(_execution) {}

    bool getExecution() const { return execution; }

 private:
    friend class live::table_writer_t;

    bool execution;
};

}  // namespace database::realtime::objects
