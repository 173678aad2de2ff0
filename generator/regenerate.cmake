# Generates the sources of one mapping.
#
#   OUT=… cmake -D YMAPGEN=… -D YANG=… -D TABLES=… -P regenerate.cmake
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
