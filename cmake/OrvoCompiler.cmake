# One place for the language level, the warnings and the sanitizers.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

# Some libraries ask for these options; precompiled headers need them everywhere or nowhere.
add_compile_options("$<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-pthread;-fPIC>")

set(ORVO_SANITIZE "" CACHE STRING "Sanitizers to build with: empty, address or thread")
set_property(CACHE ORVO_SANITIZE PROPERTY STRINGS "" address thread)
if(ORVO_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
  # The fuzz targets are guided by the coverage of our code.
  add_compile_options($<$<CXX_COMPILER_ID:Clang>:-fsanitize=fuzzer-no-link>)
elseif(ORVO_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(ORVO_SANITIZE)
  message(FATAL_ERROR "ORVO_SANITIZE is \"${ORVO_SANITIZE}\": use address or thread")
endif()

# The sanitizers' own dlopen would look along their library's run path instead of the program's.
if(ORVO_SANITIZE)
  add_link_options(LINKER:--disable-new-dtags)
endif()

# Sanitizers slow the optimiser down far more than the program.
if(ORVO_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  add_compile_options(-O1 -g1)
endif()

option(ORVO_COVERAGE "Count which lines and branches run; needs clang" OFF)
if(ORVO_COVERAGE)
  add_compile_options(-fprofile-instr-generate -fcoverage-mapping)
  add_link_options(-fprofile-instr-generate)
endif()

# Texts of interface files are looked up like all others.
set(CMAKE_AUTOUIC_OPTIONS -tr platform::localized --include platform/mainloop/Localization.h)

# Only our presets make warnings errors (CMAKE_COMPILE_WARNING_AS_ERROR): another compiler may warn
# about what ours accept.
add_library(orvo_warnings INTERFACE)
target_compile_options(orvo_warnings INTERFACE
  $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall;-Wextra;-Wpedantic;-Wshadow;-Wconversion;-Wnon-virtual-dtor;-Wold-style-cast;-Woverloaded-virtual;-Wundef>
  $<$<CXX_COMPILER_ID:Clang,AppleClang>:-Wthread-safety>
  # g++ 14 sees writes past the end inside the operator+ of std::string, and an empty optional read.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_GREATER_EQUAL:$<CXX_COMPILER_VERSION>,13>>:-Wno-error=array-bounds;-Wno-error=maybe-uninitialized>
  $<$<CXX_COMPILER_ID:MSVC>:/W4>)
