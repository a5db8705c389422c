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

# tarn_plugin(<target> SOURCES... LIBS...): a framework plug-in, bin/plugins/<target>.so.
function(tarn_plugin target)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${target} MODULE ${ARG_SOURCES})
  tarn_target(${target})
  target_link_libraries(${target} PRIVATE ${ARG_LIBS})
  set_target_properties(${target} PROPERTIES PREFIX "" SUFFIX ".so"
    LIBRARY_OUTPUT_DIRECTORY ${TARN_BIN_DIR}/plugins BUILD_RPATH "$ORIGIN/..")
endfunction()

# tarn_module(<target> NAME SOURCES... LIBS...): a module that the host loads, bin/<NAME>.arx, which
# exports exactly the two entry points.
function(tarn_module target name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_library(${target} MODULE ${ARG_SOURCES})
  tarn_target(${target})
  target_link_libraries(${target} PRIVATE ${ARG_LIBS})
  target_link_options(${target} PRIVATE
    -Wl,--version-script=${CMAKE_SOURCE_DIR}/cmake/arx.map -Wl,-z,defs)
  if(TARN_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,-z,undefs)
  endif()
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name} SUFFIX ".arx"
    BUILD_RPATH "$ORIGIN" LINK_DEPENDS ${CMAKE_SOURCE_DIR}/cmake/arx.map)
endfunction()

# The leak checker leaves dynamic thread-local storage alone: it crashes there now and then.
# tarn_test(<name> SOURCES... LIBS... [TIMEOUT seconds]): one GoogleTest program, one ctest entry.
# Programs and plug-ins under test are found through TARN_BIN_DIR, real files nobody here wrote
# through TARN_DATA_DIR (may be missing: tests then skip and say so).
find_package(GTest REQUIRED)
function(tarn_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  tarn_target(${name})
  target_link_libraries(${name} PRIVATE GTest::gmock GTest::gtest GTest::gtest_main ${ARG_LIBS})
  set_target_properties(${name} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests BUILD_RPATH ${TARN_BIN_DIR})
  target_compile_definitions(${name} PRIVATE
    TARN_BIN_DIR="${TARN_BIN_DIR}" TARN_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
    TARN_DATA_DIR="${CMAKE_SOURCE_DIR}/../shared/data")
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 300)
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
