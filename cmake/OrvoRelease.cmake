# The day of the release, for the manual page. The metainfo lists the releases; the newest must be
# this version.
set(releases "${PROJECT_SOURCE_DIR}/resources/desktop/metainfo.xml.in")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${releases}")
file(READ "${releases}" releases)
string(REGEX MATCH "<release version=\"([^\"]+)\"[^>]* date=\"([^\"]+)\"" newest "${releases}")
if(NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "The newest release in resources/desktop/metainfo.xml.in is "
                      "\"${CMAKE_MATCH_1}\", but this is version ${PROJECT_VERSION}.")
endif()
set(ORVO_RELEASE_DATE "${CMAKE_MATCH_2}")
