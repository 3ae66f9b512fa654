# orvo_library(NAME [QT] LINKS …): one static library of the product, from the sources of the
# current folder. A folder below it is a room with a target of its own, or named in ROOMS.
# Every target sees src/ as its include root; what it may include is what it links,
# and tests/structure checks each #include against the arrows of the folders.
function(orvo_library name)
  cmake_parse_arguments(ARG "QT" "" "LINKS;ROOMS;EXCEPT" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS *.h *.cpp)
  foreach(room IN LISTS ARG_ROOMS)
    file(GLOB room_sources CONFIGURE_DEPENDS ${room}/*.h ${room}/*.cpp)
    list(APPEND sources ${room_sources})
  endforeach()
  foreach(file IN LISTS ARG_EXCEPT)
    list(REMOVE_ITEM sources "${CMAKE_CURRENT_SOURCE_DIR}/${file}")
  endforeach()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE orvo_warnings)
  if(ARG_QT)
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOUIC ON
      AUTOUIC_SEARCH_PATHS "${PROJECT_SOURCE_DIR}/resources")
    target_compile_definitions(${name} PUBLIC QT_NO_KEYWORDS)
  endif()
  orvo_precompile(${name} orvo_library)
endfunction()
