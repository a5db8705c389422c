# Copies what the programs need at run time beside them: the libraries' DLLs, the framework's own plug-ins, the tables
# of coordinate systems. TARN_WIN32_DEPS is set by tools/win32/toolchain.cmake.
set(TARN_RUN_ROOT "")
if(CMAKE_CROSSCOMPILING)
  # The drive by which the emulator shows this machine's files.
  set(TARN_RUN_ROOT "Z:")
endif()
# A host of 32 bits may give its programs more than 2 GiB of addresses.
if(MINGW)
  target_link_options(tarn_options INTERFACE -Wl,--large-address-aware)
endif()
# What ./test --win32 builds: the tests of tests/CMakeLists.txt for Windows, and the programs named there.
add_custom_target(win32)
set(deps $ENV{TARN_WIN32_DEPS})
if(deps)
  file(GLOB libraries ${deps}/bin/*.dll ${deps}/qt/bin/Qt5*.dll)
  list(FILTER libraries EXCLUDE REGEX "Qt5Test")
  file(COPY ${libraries} DESTINATION ${TARN_BIN_DIR})
  file(GLOB kinds LIST_DIRECTORIES ON ${deps}/qt/plugins/*)
  file(COPY ${kinds} DESTINATION ${TARN_BIN_DIR})
  file(WRITE ${TARN_BIN_DIR}/qt.conf "[Paths]\nPrefix=.\nPlugins=.\n")
  # The toolkit's own words in Chinese.
  find_file(TARN_QT_WORDS qtbase_zh_CN.qm PATHS /usr/share/qt5/translations NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
  if(TARN_QT_WORDS)
    file(COPY ${TARN_QT_WORDS} DESTINATION ${TARN_BIN_DIR}/translations)
  endif()
  file(COPY ${deps}/share/gdal ${deps}/share/proj DESTINATION ${TARN_BIN_DIR}/share)
  file(COPY ${deps}/qt/bin/Qt5Test.dll DESTINATION ${CMAKE_BINARY_DIR}/tests)
  file(WRITE ${CMAKE_BINARY_DIR}/tests/qt.conf "[Paths]\nPrefix=../bin\nPlugins=.\n")
endif()
