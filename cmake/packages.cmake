# Three Debian packages, a component each, made by `cpack` in a build for /usr (the preset `release`). Their libraries
# keep their symbols, by which `ymap check` tells what a plug-in may write.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "ymap maintainers <maintainers@ymap.invalid>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL plugin tool devel)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})

set(CPACK_DEBIAN_PLUGIN_PACKAGE_NAME libymap-oc-ethernet)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PLUGIN_DESCRIPTION "The plug-in for OpenConfig Ethernet interfaces: translates
openconfig-if-ethernet to native models and back, called by a YANG
model-mapping framework. With its manifest, its accepted differences and
the YANG modules of both sides.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME ymap)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION net)
set(CPACK_DEBIAN_TOOL_PACKAGE_RECOMMENDS libymap-oc-ethernet)
set(ymap_control_dir ${PROJECT_BINARY_DIR}/packages)
file(WRITE ${ymap_control_dir}/triggers "activate-noawait ldconfig\n")
file(WRITE ${ymap_control_dir}/shlibs
  "libyfw ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR} ymap (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_TOOL_PACKAGE_CONTROL_EXTRA ${ymap_control_dir}/triggers ${ymap_control_dir}/shlibs)
set(CPACK_DEBIAN_TOOL_DESCRIPTION "The program ymap and its framework: translates requests of a client to
native ones and native replies back, off the device, and shows what a
mapping does: its coverage, its round trips, each leaf.")

set(CPACK_DEBIAN_DEVEL_PACKAGE_NAME ymap-dev)
set(CPACK_DEBIAN_DEVEL_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVEL_PACKAGE_DEPENDS "ymap (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVEL_PACKAGE_SUGGESTS "cmake, g++")
set(CPACK_DEBIAN_DEVEL_DESCRIPTION "What the author of a plug-in needs: the headers of the plug-in ABI and of
the framework, the generator ymapgen, and a CMake package.")

include(CPack)
