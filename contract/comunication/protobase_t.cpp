#include "comunication/protobase_t.h"

namespace comunication {

protobase_t::protobase_t(QObject* _parent) : QObject(_parent) {}

protobase_t::~protobase_t() = default;

}  // namespace comunication
