# The schema, the readers of data documents and the writers.
set(YFW_FORMAT_SOURCES
  src/error.cpp
  src/node.cpp
  src/text.cpp
  src/schema_load.cpp
  src/schema.cpp
  src/schema_types.cpp
  src/schema_values.cpp
  src/document.cpp
  src/tree_builder.cpp
  src/xml_markup.cpp
  src/read_xml.cpp
  src/read_json.cpp
  src/data_tree.cpp
  src/write_xml.cpp
  src/write_json.cpp)
