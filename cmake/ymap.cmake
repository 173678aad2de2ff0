# What every target shares, as one interface target, and the function that registers a test.
add_library(ymap_options INTERFACE)
target_compile_features(ymap_options INTERFACE cxx_std_20)
target_compile_options(ymap_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${YMAP_WERROR}>:-Werror>
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=yfw/
  $<$<BOOL:${YMAP_SANITIZE}>:-fsanitize=address,undefined;-fno-omit-frame-pointer;-fno-sanitize-recover=undefined>)
target_link_options(ymap_options INTERFACE
  $<$<BOOL:${YMAP_SANITIZE}>:-fsanitize=address,undefined>)

# ymap_test(NAME SOURCES file... [LIBRARIES target...] [DEFINITIONS text...])
# A GoogleTest program whose cases CTest runs one by one.
function(ymap_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES;DEFINITIONS")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ymap_options GTest::gtest_main ${arg_LIBRARIES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  target_compile_definitions(${name} PRIVATE ${arg_DEFINITIONS})
  add_test(NAME ${name} COMMAND ${name})
endfunction()

# ymap_plugin(NAME MANIFEST)
# Makes shared library NAME a mapping plug-in: it exports what its headers mark, needs nothing but the C library, holds
# no writable data of the compiler's start files. Its manifest stands beside it, and so do its known losses, if any.
function(ymap_plugin name manifest)
  target_link_libraries(${name} PRIVATE ymap_options)
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/include
    ${PROJECT_SOURCE_DIR}/mapping/ethernet/include)
  target_compile_options(${name} PRIVATE -fno-exceptions -fno-rtti)
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib/ymap)
  target_link_options(${name} PRIVATE -Wl,-Bsymbolic -Wl,-z,relro,-z,now)
  if(NOT YMAP_SANITIZE)
    target_link_options(${name} PRIVATE -nostartfiles -nodefaultlibs)
    target_link_libraries(${name} PRIVATE c)
  endif()
  configure_file(${manifest} ${PROJECT_BINARY_DIR}/lib/ymap/lib${name}.manifest.json COPYONLY)
  if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/known-losses)
    configure_file(known-losses ${PROJECT_BINARY_DIR}/lib/ymap/lib${name}.known-losses COPYONLY)
  endif()
endfunction()
