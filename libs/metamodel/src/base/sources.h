// The files that reports and log lines name. They are stated here and at the checks, because hosts match on them:
// __FILE__ is the path on the machine that built the library, and a stringised condition changes with the
// formatter.
#pragma once

namespace zov::metamodel::sources {

inline constexpr char const* modelInfo = "libs/metamodel/src/zovMdlModelInfo.cpp";
inline constexpr char const* classInfo = "libs/metamodel/src/zovMdlClassInfo.cpp";
inline constexpr char const* fieldInfo = "libs/metamodel/src/zovMdlFieldInfo.cpp";
inline constexpr char const* relationInfo = "libs/metamodel/src/zovMdlRelationInfo.cpp";
inline constexpr char const* idInfo = "libs/metamodel/src/zovMdlIdInfo.cpp";

} // namespace zov::metamodel::sources
