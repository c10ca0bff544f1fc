// Where each kind of contender comes from.
#pragma once

#include "contender.h"

namespace zov::benchmarks {

contenderKind metamodelKind();
contenderKind flatTableKind();
contenderKind twoLevelMapKind();

// Peers: each is there only when its library was found.
contenderKind protobufKind();
contenderKind gobjectKind();
contenderKind qtKind();
contenderKind ogrKind();
contenderKind sqliteKind();

} // namespace zov::benchmarks
