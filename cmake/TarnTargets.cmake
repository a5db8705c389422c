# Rules that every target of the repository shares. One folder makes its targets with these and
# nothing else, so that warnings, sanitizers and output folders cannot differ.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_AUTOMOC OFF)

# Programs, libraries, modules and plug-ins stand together, so a build folder runs where it is.
set(TARN_BIN_DIR ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${TARN_BIN_DIR})
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${TARN_BIN_DIR})
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(TARN_LIBRARY_SUFFIX ${CMAKE_SHARED_LIBRARY_SUFFIX})

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "" FORCE)
endif()

find_program(TARN_CCACHE ccache)
if(TARN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${TARN_CCACHE})
endif()

add_library(tarn_options INTERFACE)
target_compile_options(tarn_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
  -Wformat=2 -Wimplicit-fallthrough -Werror)
target_include_directories(tarn_options INTERFACE ${CMAKE_SOURCE_DIR})
if(TARN_SANITIZE)
  # Instrumented code makes g++ see uninitialised values where there are none.
  target_compile_options(tarn_options INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>
    -fsanitize=${TARN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tarn_options INTERFACE -fsanitize=${TARN_SANITIZE})
endif()

# tarn_target(<target>): the common options for a target made with add_library or add_executable.
function(tarn_target target)
  target_link_libraries(${target} PRIVATE tarn_options)
endfunction()

# What a build for Windows finds at run time stands beside its programs, as on a user's machine.
if(WIN32)
  include(${CMAKE_SOURCE_DIR}/cmake/WindowsRuntime.cmake)
endif()

# tarn_defs(<target>): a shared library in which nothing is left for others to define. On Windows none ever can be.
function(tarn_defs target)
  if(NOT WIN32 AND NOT TARN_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
endfunction()

# tarn_export_all(<target>): a shared library that offers whatever its own sources define; what it links in stays its own.
function(tarn_export_all target)
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET default
    VISIBILITY_INLINES_HIDDEN OFF WINDOWS_EXPORT_ALL_SYMBOLS ON)
  if(MINGW)
    target_link_options(${target} PRIVATE -Wl,--exclude-libs,ALL)
  endif()
endfunction()

# tarn_plugin(<target> SOURCES... LIBS...): a framework plug-in, bin/plugins/<target>.so (.dll on Windows).
function(tarn_plugin target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${target} MODULE ${ARG_SOURCES})
  tarn_target(${target})
  target_link_libraries(${target} PRIVATE ${ARG_LIBS})
  set_target_properties(${target} PROPERTIES PREFIX "" SUFFIX ${TARN_LIBRARY_SUFFIX}
    LIBRARY_OUTPUT_DIRECTORY ${TARN_BIN_DIR}/plugins BUILD_RPATH "$ORIGIN/..")
endfunction()

# tarn_module(<target> NAME SOURCES... LIBS...): a module that the host loads, bin/<NAME>.arx, which
# exports exactly the two entry points.
function(tarn_module target name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${target} MODULE ${ARG_SOURCES})
  tarn_target(${target})
  target_link_libraries(${target} PRIVATE ${ARG_LIBS})
  if(WIN32)
    target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/arx.def)
  else()
    target_link_options(${target} PRIVATE -Wl,--version-script=${CMAKE_SOURCE_DIR}/cmake/arx.map)
  endif()
  tarn_defs(${target})
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name} SUFFIX ".arx"
    BUILD_RPATH "$ORIGIN" LINK_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/arx.map)
endfunction()

# The leak checker leaves dynamic thread-local storage alone: it crashes there now and then.
# tarn_test(<name> SOURCES... [POSIX...] LIBS... [TIMEOUT seconds]): one GoogleTest program, one ctest entry.
# Programs and plug-ins under test are found through TARN_BIN_DIR, real files nobody here wrote
# through TARN_DATA_DIR (may be missing: tests then skip and say so). Sources under POSIX are about that kind of
# system (signals, modes, pipes among files): on Windows they are left out, and an entry that is skipped says so.
find_package(GTest REQUIRED)
function(tarn_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;POSIX;LIBS" ${ARGN})
  if(WIN32)
    foreach(source ${ARG_POSIX})
      get_filename_component(stem ${source} NAME_WE)
      add_test(NAME ${name}_${stem}_posix COMMAND ${CMAKE_COMMAND} -E echo "${name}: ${source} is about POSIX systems")
      set_tests_properties(${name}_${stem}_posix PROPERTIES SKIP_REGULAR_EXPRESSION "about POSIX")
    endforeach()
    set(ARG_POSIX)
  endif()
  add_executable(${name} ${ARG_SOURCES} ${ARG_POSIX})
  tarn_target(${name})
  if(WIN32)
    # Compiled once, run once: what counts is the code under test.
    target_compile_options(${name} PRIVATE -O0)
    add_dependencies(win32 ${name})
    # M_PI, which is POSIX's.
    target_compile_definitions(${name} PRIVATE _USE_MATH_DEFINES)
  endif()
  target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest GTest::gtest_main ${ARG_LIBS})
  set_target_properties(${name} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests BUILD_RPATH ${TARN_BIN_DIR})
  target_compile_definitions(${name} PRIVATE
    TARN_BIN_DIR="${TARN_RUN_ROOT}${TARN_BIN_DIR}" TARN_SOURCE_DIR="${TARN_RUN_ROOT}${CMAKE_SOURCE_DIR}"
    TARN_DATA_DIR="${TARN_RUN_ROOT}${CMAKE_SOURCE_DIR}/../shared/data")
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
  endif()
  if(WIN32)
    # Not optimised, and often beside other work.
    math(EXPR ARG_TIMEOUT "4 * ${ARG_TIMEOUT}")
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT
    "QT_QPA_PLATFORM=offscreen;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/lsan.supp:print_suppressions=0;ASAN_OPTIONS=intercept_tls_get_addr=0;TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/cmake/tsan.supp")
endfunction()

# tarn_check_headers(): compiles every header of the built folders alone, twice included, so that
# each names what it needs and is guarded.
function(tarn_check_headers)
  if(TARN_CORE_ONLY)
    set(rooms base inc kelpie_core host)
  else()
    set(rooms base inc kelpie_core host components commoncode _image app imageclient)
  endif()
  set(units)
  foreach(room ${rooms})
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_SOURCE_DIR} ${room}/*.h)
    foreach(header ${headers})
      if(TARN_CORE_ONLY AND header MATCHES "host/window")
        continue()
      endif()
      string(REPLACE "/" "_" unit ${header})
      set(unit ${CMAKE_BINARY_DIR}/header_check/${unit}.cpp)
      set(text "#include \"${header}\"\n#include \"${header}\"\n")
      if(NOT EXISTS ${unit})
        file(WRITE ${unit} ${text})
      endif()
      list(APPEND units ${unit})
    endforeach()
  endforeach()
  add_library(header_check OBJECT ${units})
  tarn_target(header_check)
  target_include_directories(header_check PRIVATE ${CMAKE_SOURCE_DIR}/host/inc)
  target_link_libraries(header_check PRIVATE Qt5::Core Qt5::Gui)
  if(NOT TARN_CORE_ONLY)
    target_link_libraries(header_check PRIVATE Qt5::Widgets GDAL::GDAL SQLite::SQLite3 JPEG::JPEG)
  endif()
endfunction()
