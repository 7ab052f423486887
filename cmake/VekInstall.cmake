# cmake --install: headers, both libraries, the CMake package vekj (vekj::vekjq3, vekj::vekcore) and pkg-config files.
include(CMakePackageConfigHelpers)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vekj)
set(package_build_dir ${PROJECT_BINARY_DIR}/package)

install(TARGETS vekjq3 vekcore EXPORT vekjTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

install(EXPORT vekjTargets NAMESPACE vekj:: DESTINATION ${package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/vekjConfig.cmake.in ${package_build_dir}/vekjConfig.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${package_build_dir}/vekjConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${package_build_dir}/vekjConfig.cmake ${package_build_dir}/vekjConfigVersion.cmake
  DESTINATION ${package_dir})

# The files find their prefix from where they lie, so that an installation can move.
file(RELATIVE_PATH prefix_from_pkgconfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig "${prefix_from_pkgconfig}")
foreach(name IN ITEMS vekcore vekjq3)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in ${package_build_dir}/${name}.pc @ONLY)
  install(FILES ${package_build_dir}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
