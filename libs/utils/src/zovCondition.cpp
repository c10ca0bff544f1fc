#include "zovCondition.h"

namespace zov::conditions {

condition::~condition() = default;

} // namespace zov::conditions
