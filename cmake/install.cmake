# What `cmake --install` lays out, below any prefix: the program finds its data relative to itself. The components are
# the packages of packages.cmake.
include(CMakePackageConfigHelpers)

set(ymap_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ymap)
set(ymap_header_dir ${CMAKE_INSTALL_INCLUDEDIR}/ymap)

# The mapping: plug-in, manifest, accepted differences, modules. The program looks for modules in share/ymap/yang.
set(ymap_plugin_dir ${CMAKE_INSTALL_LIBDIR}/ymap)
install(TARGETS ymap_oc_ethernet LIBRARY DESTINATION ${ymap_plugin_dir} COMPONENT plugin)
install(FILES mapping/ethernet/manifest.json RENAME libymap_oc_ethernet.manifest.json
  DESTINATION ${ymap_plugin_dir} COMPONENT plugin)
install(FILES mapping/ethernet/accepted-differences RENAME libymap_oc_ethernet.accepted-differences
  DESTINATION ${ymap_plugin_dir} COMPONENT plugin)
install(DIRECTORY yang/ DESTINATION share/ymap/yang COMPONENT plugin)

# The framework and the program.
install(TARGETS ymap RUNTIME COMPONENT tool)
install(TARGETS yfw yfw_abi ymap_frame EXPORT ymapTargets
  LIBRARY COMPONENT tool NAMELINK_COMPONENT devel
  INCLUDES DESTINATION ${ymap_header_dir})
install(FILES docs/ymap.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
install(FILES host/completion/ymap.bash RENAME ymap
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tool)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tool FILES_MATCHING PATTERN *.md PATTERN ymap.1)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT tool PATTERN *.lock EXCLUDE)

# What the author of another plug-in needs, and who embeds the framework: find_package(ymap).
install(TARGETS ymapgen EXPORT ymapTargets RUNTIME COMPONENT devel)
get_property(ymap_header_folders GLOBAL PROPERTY YFW_include)
list(TRANSFORM ymap_header_folders APPEND /)
install(DIRECTORY abi/include/ mapping/ethernet/include/ ${ymap_header_folders}
  DESTINATION ${ymap_header_dir} COMPONENT devel)
install(EXPORT ymapTargets NAMESPACE ymap:: DESTINATION ${ymap_package_dir} COMPONENT devel)
configure_package_config_file(cmake/ymapConfig.cmake.in ymapConfig.cmake INSTALL_DESTINATION ${ymap_package_dir})
write_basic_package_version_file(ymapConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES cmake/plugin.cmake ${PROJECT_BINARY_DIR}/ymapConfig.cmake ${PROJECT_BINARY_DIR}/ymapConfigVersion.cmake
  DESTINATION ${ymap_package_dir} COMPONENT devel)
