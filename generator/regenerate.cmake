# Generates the sources of one mapping folder and formats them.
#
#   cmake -D YMAPGEN=… -D CLANG_FORMAT=… -D STYLE=… -D YANG=… -D TABLES=… -D OUT=… -P regenerate.cmake
#
# TABLES is a folder with *.map files; what they yield goes to OUT/src and OUT/include.
file(GLOB tables ${TABLES}/*.map)
file(MAKE_DIRECTORY ${OUT}/src ${OUT}/include)
execute_process(
  COMMAND ${YMAPGEN} --yang ${YANG} --out-src ${OUT}/src --out-include ${OUT}/include ${tables}
  OUTPUT_VARIABLE files OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE "\n" ";" files "${files}")
execute_process(COMMAND ${CLANG_FORMAT} --style=file:${STYLE} -i ${files} COMMAND_ERROR_IS_FATAL ANY)
