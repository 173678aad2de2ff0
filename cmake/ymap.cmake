# What every target shares, as one interface target, and the function that registers a test.
add_library(ymap_options INTERFACE)
target_compile_features(ymap_options INTERFACE cxx_std_20)
target_compile_options(ymap_options INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<BOOL:${YMAP_WERROR}>:-Werror>
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=yfw/
  $<$<BOOL:${YMAP_SANITIZE}>:-fsanitize=address,undefined;-fno-omit-frame-pointer;-fno-sanitize-recover=undefined>
  $<$<BOOL:${YMAP_SANITIZE_THREADS}>:-fsanitize=thread>
  $<$<BOOL:${YMAP_FUZZ}>:-fsanitize=fuzzer-no-link;-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/ignored>
  $<$<BOOL:${YMAP_COVERAGE}>:--coverage;-fprofile-update=atomic>
  $<$<BOOL:${YMAP_COVERAGE}>:-fprofile-prefix-map=${PROJECT_SOURCE_DIR}/=${PROJECT_SOURCE_DIR}/>)
target_link_options(ymap_options INTERFACE
  $<$<BOOL:${YMAP_SANITIZE}>:-fsanitize=address,undefined>
  $<$<BOOL:${YMAP_SANITIZE_THREADS}>:-fsanitize=thread>
  $<$<BOOL:${YMAP_COVERAGE}>:--coverage>)

# ymap_test(NAME SOURCES file... [LIBRARIES target...] [DEFINITIONS text...])
# A GoogleTest program whose cases CTest runs one by one.
function(ymap_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES;DEFINITIONS")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ymap_options GTest::gtest_main ${arg_LIBRARIES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  target_compile_definitions(${name} PRIVATE ${arg_DEFINITIONS})
  set_target_properties(${name} PROPERTIES UNITY_BUILD OFF)  # each file of tests names its helpers as it likes
  add_test(NAME ${name} COMMAND ${name})
endfunction()
