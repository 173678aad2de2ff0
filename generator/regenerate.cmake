# Generates the sources of one mapping and formats them.
#
#   OUT=… cmake -D YMAPGEN=… -D CLANG_FORMAT=… -D STYLE=… -D YANG=… -D TABLES=… -P regenerate.cmake
#
# TABLES is a folder with *.map files. What they yield goes to the folders src and include of the folder that the
# environment names OUT; their names are printed.
file(GLOB tables ${TABLES}/*.map)
set(sources $ENV{OUT}/src)
set(headers $ENV{OUT}/include)
file(MAKE_DIRECTORY ${sources} ${headers})
execute_process(
  COMMAND ${YMAPGEN} --yang ${YANG} --out-src ${sources} --out-include ${headers} ${tables}
  OUTPUT_VARIABLE files OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
message(STATUS "${files}")
string(REPLACE "\n" ";" files "${files}")
execute_process(COMMAND ${CLANG_FORMAT} --style=file:${STYLE} -i ${files} COMMAND_ERROR_IS_FATAL ANY)
