# How a plug-in is made: for the project itself, and, installed beside ymapConfig.cmake, for the plug-ins of others.

# ymap_plugin(NAME MANIFEST)
# Makes shared library NAME a mapping plug-in: it exports what its headers mark, needs nothing but the C library, holds
# no writable data of the compiler's start files. It appears in lib/ymap of the build; its manifest stands beside it,
# and so do its accepted differences, if any, in the file accepted-differences or, in older sources, known-losses.
function(ymap_plugin name manifest)
  target_link_libraries(${name} PRIVATE ymap::ymap_frame)
  target_include_directories(${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/include)
  target_compile_options(${name} PRIVATE -fno-exceptions -fno-rtti)
  # Each source is an object of its own: in one, a custom function and the weak alias that it overrides would clash.
  set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON UNITY_BUILD OFF
    LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib/ymap)
  target_link_options(${name} PRIVATE -Wl,-Bsymbolic -Wl,-z,relro,-z,now)
  # What a sanitizer or coverage adds to the code needs the start files.
  if(NOT YMAP_INSTRUMENTED)
    target_link_options(${name} PRIVATE -nostartfiles -nodefaultlibs)
    target_link_libraries(${name} PRIVATE c)
  endif()
  configure_file(${manifest} ${PROJECT_BINARY_DIR}/lib/ymap/lib${name}.manifest.json COPYONLY)
  foreach(accepted known-losses accepted-differences)
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${accepted})
      configure_file(${accepted} ${PROJECT_BINARY_DIR}/lib/ymap/lib${name}.accepted-differences COPYONLY)
    endif()
  endforeach()
endfunction()
