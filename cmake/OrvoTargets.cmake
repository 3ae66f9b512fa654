# orvo_library(NAME SOURCES … LINKS …): one static library of the product.
# Every target sees src/ as its include root; what it may include is what it links,
# and tests/structure checks each #include against the arrows of the folders.
function(orvo_library name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE orvo_warnings)
  if(ARG_QT)
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOUIC ON
      AUTOUIC_SEARCH_PATHS "${PROJECT_SOURCE_DIR}/resources")
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS)
  endif()
endfunction()
