# Precompiled headers. Most of a compilation goes into the headers of the standard library, Qt and
# GoogleMock. Each set below is compiled once for all targets that have its compile flags; a header
# compiled with other flags cannot be used. Sources include what they use all the same: the clang
# preset builds without.
option(ORVO_PRECOMPILE "Precompile the headers of the standard library, Qt and GoogleMock" ON)
if(ORVO_PRECOMPILE)
  # What ccache needs to take sources with precompiled headers.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>
                      "$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")
endif()

set(ORVO_STANDARD_HEADERS
  <algorithm> <array> <atomic> <cerrno> <chrono> <cmath> <condition_variable> <cstddef> <cstdint>
  <cstdio> <cstdlib> <cstring> <filesystem> <functional> <future> <limits> <map> <memory> <mutex>
  <optional> <set> <span> <stdexcept> <string> <string_view> <system_error> <thread> <utility>
  <vector>)
set(ORVO_QT_HEADERS
  <QAccessible> <QApplication> <QImage> <QKeyEvent> <QLabel> <QMainWindow> <QMenuBar> <QMessageBox>
  <QObject> <QPainter> <QPainterPath> <QPointer> <QPushButton> <QString> <QTimer> <QWidget>)
set(ORVO_TEST_HEADERS <gmock/gmock.h> <gtest/gtest.h> <fstream> <random>)

# orvo_precompiled_set(NAME LINKS … HEADERS …): a set, with the compile flags of this folder.
function(orvo_precompiled_set name)
  cmake_parse_arguments(ARG "" "" "LINKS;HEADERS" ${ARGN})
  if(NOT ORVO_PRECOMPILE)
    return()
  endif()
  set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
  file(CONFIGURE OUTPUT "${source}" CONTENT "")
  add_library(${name} OBJECT "${source}")
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} orvo_warnings)
  if(Qt6::Widgets IN_LIST ARG_LINKS)
    target_compile_definitions(${name} PRIVATE QT_NO_KEYWORDS)
  endif()
  target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
endfunction()

# orvo_precompile(TARGET PREFIX): uses PREFIX_qt_headers where the target sees Qt Widgets, else
# PREFIX_headers.
function(orvo_precompile target prefix)
  if(NOT ORVO_PRECOMPILE)
    return()
  endif()
  get_target_property(links ${target} LINK_LIBRARIES)
  orvo_links_widgets(widgets ${links})
  set(set_name ${prefix}_headers)
  if(widgets)
    set(set_name ${prefix}_qt_headers)
  endif()
  target_precompile_headers(${target} REUSE_FROM ${set_name})
endfunction()

# orvo_links_widgets(RESULT LIBRARY…): whether one of them is Qt Widgets or links it.
function(orvo_links_widgets result)
  set(${result} OFF PARENT_SCOPE)
  foreach(link IN LISTS ARGN)
    set(found OFF)
    if(link STREQUAL "Qt6::Widgets")
      set(found ON)
    elseif(link MATCHES "^orvo_" AND TARGET ${link})
      get_target_property(further ${link} INTERFACE_LINK_LIBRARIES)
      orvo_links_widgets(found ${further})
    endif()
    if(found)
      set(${result} ON PARENT_SCOPE)
      return()
    endif()
  endforeach()
endfunction()
