# What lets another project's build find the installed library: find_package(vostrand) and pkg-config. Both work out
# the prefix from where they are, so the installed folder can be moved.
include(CMakePackageConfigHelpers)

set(vostrand_package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/vostrand)
install(EXPORT vostrandTargets NAMESPACE vostrand:: DESTINATION ${vostrand_package_folder} COMPONENT headers)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/vostrandConfig.cmake.in
  ${PROJECT_BINARY_DIR}/vostrandConfig.cmake
  INSTALL_DESTINATION ${vostrand_package_folder} NO_SET_AND_CHECK_MACRO)
# Before 1.0 a minor version may break its users.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vostrandConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vostrandConfig.cmake ${PROJECT_BINARY_DIR}/vostrandConfigVersion.cmake
  DESTINATION ${vostrand_package_folder} COMPONENT headers)

file(RELATIVE_PATH vostrand_pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(${CMAKE_CURRENT_LIST_DIR}/vostrand.pc.in ${PROJECT_BINARY_DIR}/vostrand.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vostrand.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT headers)
