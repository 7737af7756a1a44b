#pragma once

namespace database::realtime::objects {

/// Whether a scenario is executed.
class rt_object_scenary_t {
 public:
    explicit rt_object_scenary_t(bool _execution) : execution(_execution) {}

    bool getExecution() const { return execution; }
    void setExecution(bool _execution) { execution = _execution; }

 private:
    bool execution;
};

}  // namespace database::realtime::objects
