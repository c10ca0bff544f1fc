#include "contenders.h"

namespace zov::benchmarks {

std::vector<contenderKind> const& contenderKinds() {
    static std::vector<contenderKind> const kinds = {
        metamodelKind(), flatTableKind(), twoLevelMapKind(),
#ifdef ZOV_PEER_PROTOBUF
        protobufKind(),
#endif
#ifdef ZOV_PEER_GOBJECT
        gobjectKind(),
#endif
#ifdef ZOV_PEER_QT
        qtKind(),
#endif
#ifdef ZOV_PEER_OGR
        ogrKind(),
#endif
#ifdef ZOV_PEER_SQLITE
        sqliteKind(),
#endif
    };
    return kinds;
}

std::vector<std::string> const& missingPeers() {
    static std::vector<std::string> const missing = {ZOV_MISSING_PEERS};
    return missing;
}

} // namespace zov::benchmarks
