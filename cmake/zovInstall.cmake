# What hosts get: both libraries, their headers in one flat folder, a CMake package and a pkg-config file.
include(CMakePackageConfigHelpers)

set(ZOV_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/zovMetamodel")

install(TARGETS zovUtils zovMetamodel EXPORT zovMetamodelTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
  INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zov"
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zov")
install(EXPORT zovMetamodelTargets NAMESPACE zov:: DESTINATION "${ZOV_PACKAGE_DIR}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/zovMetamodelConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/zovMetamodelConfig.cmake" INSTALL_DESTINATION "${ZOV_PACKAGE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/zovMetamodelConfigVersion.cmake"
  COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/zovMetamodelConfig.cmake"
  "${PROJECT_BINARY_DIR}/zovMetamodelConfigVersion.cmake"
  DESTINATION "${ZOV_PACKAGE_DIR}")

# The prefix is found from where the file lies, so that an installed tree may be moved.
set(ZOV_PREFIX_FROM_PC "/")
cmake_path(RELATIVE_PATH ZOV_PREFIX_FROM_PC BASE_DIRECTORY "/${CMAKE_INSTALL_LIBDIR}/pkgconfig")
configure_file("${PROJECT_SOURCE_DIR}/cmake/zovMetamodel.pc.in" "${PROJECT_BINARY_DIR}/zovMetamodel.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zovMetamodel.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
