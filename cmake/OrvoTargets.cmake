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

# orvo_module(NAME LINKS …): a module of the program, orvo-NAME.so, from the sources of the current
# folder: code that is loaded late links its libraries here, where packaging tools see them. It links
# none of our libraries, whose state must exist once in the process. Tests may link the archive, orvo_NAME.
function(orvo_module name)
  orvo_library(orvo_${name} ${ARGN})
  set_target_properties(orvo_${name} PROPERTIES
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")  # whose precompiled headers depend on the visibility
    set_target_properties(orvo_${name} PROPERTIES DISABLE_PRECOMPILE_HEADERS ON)
  endif()
  cmake_parse_arguments(ARG "" "" "LINKS" ${ARGN})
  add_library(orvo-${name} MODULE $<TARGET_OBJECTS:orvo_${name}>)
  set_target_properties(orvo-${name} PROPERTIES PREFIX "" LINKER_LANGUAGE CXX
    LIBRARY_OUTPUT_DIRECTORY "${ORVO_MODULE_FOLDER}" BUILD_RPATH "" INSTALL_RPATH "")
  target_link_libraries(orvo-${name} PRIVATE ${ARG_LINKS})
  if(NOT APPLE AND NOT ORVO_SANITIZE)  # clang's sanitizers leave symbols to the program
    target_link_options(orvo-${name} PRIVATE LINKER:-z,defs)
  endif()
  install(TARGETS orvo-${name} LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}/orvo")
endfunction()

# Programs find the modules by their run path, in the build tree and where they are installed.
include(GNUInstallDirs)
set(ORVO_MODULE_FOLDER "${PROJECT_BINARY_DIR}/lib/orvo")
set(CMAKE_BUILD_RPATH "$ORIGIN/../lib/orvo" "$ORIGIN/../../lib/orvo")  # benchmarks/, src/app/
file(RELATIVE_PATH installed_modules "${CMAKE_INSTALL_FULL_BINDIR}"
  "${CMAKE_INSTALL_FULL_LIBDIR}/orvo")
set(CMAKE_INSTALL_RPATH "$ORIGIN/${installed_modules}")
