#include "comunication/protoserver_t.h"

namespace comunication {

protoserver_t::protoserver_t(QObject* _parent) : protobase_t(_parent) {}

protoserver_t::~protoserver_t() = default;

}  // namespace comunication
