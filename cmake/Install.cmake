# What an installation holds: the library (component runtime); headers, developer link, CMake package and
# pkg-config file (component dev). All of it may be moved as a whole: no file names the prefix.
include(CMakePackageConfigHelpers)

set(ORV_INSTALL_HEADERS ${CMAKE_INSTALL_INCLUDEDIR}/ORVImg-3)
set(ORV_INSTALL_CMAKE ${CMAKE_INSTALL_LIBDIR}/cmake/ORVImg)
set(ORV_INSTALL_PKGCONFIG ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS ORVImg EXPORT ORVImgTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${ORV_INSTALL_HEADERS} COMPONENT dev
  FILES_MATCHING PATTERN "*.h")

install(EXPORT ORVImgTargets NAMESPACE ORV:: DESTINATION ${ORV_INSTALL_CMAKE} COMPONENT dev)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/ORVImgConfig.cmake.in
  ${PROJECT_BINARY_DIR}/install/ORVImgConfig.cmake INSTALL_DESTINATION ${ORV_INSTALL_CMAKE})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/install/ORVImgConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/install/ORVImgConfig.cmake ${PROJECT_BINARY_DIR}/install/ORVImgConfigVersion.cmake
  DESTINATION ${ORV_INSTALL_CMAKE} COMPONENT dev)

# The pkg-config file finds its prefix from its own place, so the way up from there is all it has to know.
file(RELATIVE_PATH ORV_PREFIX_FROM_PKGCONFIG /prefix/${ORV_INSTALL_PKGCONFIG} /prefix)
string(REGEX REPLACE "/$" "" ORV_PREFIX_FROM_PKGCONFIG "${ORV_PREFIX_FROM_PKGCONFIG}")
configure_file(${CMAKE_CURRENT_LIST_DIR}/orvimg.pc.in ${PROJECT_BINARY_DIR}/install/orvimg.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/install/orvimg.pc DESTINATION ${ORV_INSTALL_PKGCONFIG} COMPONENT dev)
