# The rooms of the framework and the library that they make.

# yfw_room(NAME SOURCES file... [ROOMS room...] [LIBRARIES target...])
# A room, as object library yfw_NAME. Its public headers are in include/yfw, those for other rooms only in
# internal/yfw/internal; both are found by the rooms that link it, and by no other, so that an include against the order
# of rooms does not compile. Its private headers stand beside the sources.
function(yfw_room name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;ROOMS;LIBRARIES")
  set(room yfw_${name})
  add_library(${room} OBJECT ${arg_SOURCES})
  foreach(folder include internal)
    if(IS_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
      target_include_directories(${room} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
      set_property(GLOBAL APPEND PROPERTY YFW_${folder} ${CMAKE_CURRENT_SOURCE_DIR}/${folder})
    endif()
  endforeach()
  list(JOIN arg_ROOMS "," links)
  set_property(GLOBAL APPEND_STRING PROPERTY YFW_ROOM_LINES
    "${name} ${links}, $<JOIN:$<TARGET_OBJECTS:${room}>, >\n")
  list(TRANSFORM arg_ROOMS PREPEND yfw_)
  target_link_libraries(${room} PUBLIC ${arg_ROOMS} PRIVATE ymap_options ${arg_LIBRARIES})
  set_target_properties(${room} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  set_property(GLOBAL APPEND PROPERTY YFW_ROOMS ${room})
  set_property(GLOBAL APPEND PROPERTY YFW_LIBRARIES ${arg_LIBRARIES})
endfunction()

# yfw_library(NAME [SOURCES file...])
# The shared library of all rooms. Who links it sees the public headers.
function(yfw_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES")
  foreach(property ROOMS LIBRARIES include internal)
    get_property(${property} GLOBAL PROPERTY YFW_${property})
  endforeach()
  list(REMOVE_DUPLICATES LIBRARIES)
  add_library(${name} SHARED ${arg_SOURCES})
  foreach(room ${ROOMS})
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:${room}>)
  endforeach()
  foreach(folder ${include})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${folder}>)
  endforeach()
  target_include_directories(${name} PRIVATE ${internal})
  target_link_libraries(${name} PUBLIC yfw_abi PRIVATE ymap_options ${LIBRARIES})

  # For tests, which may see everything: rooms.txt has each room, what it links, and its objects.
  get_property(lines GLOBAL PROPERTY YFW_ROOM_LINES)
  file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/rooms.txt CONTENT "${lines}")
  add_library(${name}_internal INTERFACE)
  target_link_libraries(${name}_internal INTERFACE ${name})
  target_include_directories(${name}_internal INTERFACE ${internal})
endfunction()
