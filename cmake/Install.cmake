# What a host gets: the two libraries, the public headers with the generated records, a CMake package and a
# pkg-config file. All of it may be moved after installation.
include(CMakePackageConfigHelpers)
set(headers_dir ${CMAKE_INSTALL_INCLUDEDIR}/receiver-lib)
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/receiver-lib)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set_target_properties(receiver-lib-stderr-log PROPERTIES EXPORT_NAME stderr-log)
install(TARGETS receiver-lib receiver-lib-stderr-log
  EXPORT receiver-lib-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${headers_dir} FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_BINARY_DIR}/proto/generated/protos.pb.h ${PROJECT_SOURCE_DIR}/proto/protos.proto
  DESTINATION ${headers_dir})

install(EXPORT receiver-lib-targets NAMESPACE receiver-lib:: DESTINATION ${package_dir})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/receiver-lib-config.cmake.in receiver-lib-config.cmake
  INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(receiver-lib-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES
  ${CMAKE_CURRENT_BINARY_DIR}/receiver-lib-config.cmake
  ${CMAKE_CURRENT_BINARY_DIR}/receiver-lib-config-version.cmake
  DESTINATION ${package_dir})

file(RELATIVE_PATH up_to_prefix /prefix/${pkgconfig_dir} /prefix)
string(REGEX REPLACE "/$" "" up_to_prefix ${up_to_prefix})
configure_file(${CMAKE_CURRENT_LIST_DIR}/receiver-lib.pc.in receiver-lib.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/receiver-lib.pc DESTINATION ${pkgconfig_dir})
