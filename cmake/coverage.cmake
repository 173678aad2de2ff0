# The target coverage_report: which lines and branches ran since the build or the last report, in coverage/index.html of
# the build and, in short, on the terminal. Branches that only an exception takes are omitted.
find_program(YMAP_GCOVR gcovr REQUIRED)
set(ymap_coverage_dir ${PROJECT_BINARY_DIR}/coverage)
add_custom_target(coverage_report
  COMMAND ${CMAKE_COMMAND} -E make_directory ${ymap_coverage_dir}
  COMMAND ${YMAP_GCOVR} --root ${PROJECT_SOURCE_DIR} --object-directory ${PROJECT_BINARY_DIR}
    --filter mapping/ --filter framework/ --filter generator/ --filter host/
    --exclude-throw-branches --exclude-unreachable-branches
    --html-details ${ymap_coverage_dir}/index.html --json-summary ${ymap_coverage_dir}/summary.json
    --txt --print-summary
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} VERBATIM)
