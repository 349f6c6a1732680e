# Compiler settings and the few helpers that all folders share. Flags stand here and nowhere else.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

add_library(merchantry_flags INTERFACE)
target_include_directories(merchantry_flags INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(merchantry_flags INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  target_compile_options(merchantry_flags INTERFACE -Wno-restrict) # GCC 12 reports it inside its own std::string
endif()
target_compile_definitions(merchantry_flags INTERFACE MERCHANTRY_VERSION="${PROJECT_VERSION}")
if(MERCHANTRY_SANITIZE)
  target_compile_options(merchantry_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_link_options(merchantry_flags INTERFACE -fsanitize=address,undefined)
endif()
if(MERCHANTRY_FUZZ)
  target_compile_options(merchantry_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined)
  target_link_options(merchantry_flags INTERFACE -fsanitize=address,undefined)
endif()
find_program(MERCHANTRY_MOLD mold)
if(MERCHANTRY_MOLD AND NOT MERCHANTRY_FUZZ)
  target_link_options(merchantry_flags INTERFACE -fuse-ld=mold)
endif()

# The presets optimise for speed (-O2). Screens, scripts and tests wait for their user and for the store: no benchmark tells -Og from -O2
# there, and it compiles in half the time.
set(MERCHANTRY_LIGHTLY "")
if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo" AND NOT MERCHANTRY_SANITIZE AND NOT MERCHANTRY_FUZZ)
  set(MERCHANTRY_LIGHTLY -Og)
endif()

# What almost every file includes, compiled once for all: the standard library, with Qt for what draws, with GoogleTest for tests. Nothing of
# the tree is among it: a changed header must not rebuild what does not include it. Files still include what they use. Compilers other than
# GCC read the headers as ever (clang cannot read what GCC compiled, nor the other way round).
set(MERCHANTRY_PRECOMPILED <algorithm> <array> <chrono> <cmath> <cstdint> <deque> <filesystem> <fstream> <functional> <map> <memory> <mutex>
  <optional> <set> <span> <sstream> <stdexcept> <string> <string_view> <typeindex> <variant> <vector>)
set(MERCHANTRY_PRECOMPILED_QT <QApplication> <QBoxLayout> <QComboBox> <QDialog> <QKeyEvent> <QLabel> <QLineEdit> <QMouseEvent> <QPainter>
  <QPushButton> <QScrollBar> <QString> <QTableView> <QTimer> <QWidget>)
option(MERCHANTRY_PCH "Precompile the standard headers" ON)
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  set(MERCHANTRY_PCH OFF)
endif()
if(MERCHANTRY_PCH)
  # GCC 12 forgets that what it precompiled are the system's headers, and reports these inside std::string.
  target_compile_options(merchantry_flags INTERFACE -Wno-array-bounds -Wno-stringop-overflow)
endif()
# merchantry_precompiled(name [LIGHTLY] LINK … HEADERS …): precompiled headers under a name; LIGHTLY for targets that are compiled so.
function(merchantry_precompiled name)
  cmake_parse_arguments(ARG "LIGHTLY" "" "LINK;HEADERS" ${ARGN})
  if(MERCHANTRY_PCH)
    file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/${name}.cpp CONTENT "// Gives the precompiled headers a target.\n")
    add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/${name}.cpp)
    target_link_libraries(${name} PRIVATE merchantry_flags ${ARG_LINK})
    if(ARG_LIGHTLY)
      target_compile_options(${name} PRIVATE ${MERCHANTRY_LIGHTLY})
    endif()
    target_precompile_headers(${name} PRIVATE ${ARG_HEADERS})
  endif()
endfunction()
function(merchantry_use_precompiled target name)
  if(MERCHANTRY_PCH)
    target_precompile_headers(${target} REUSE_FROM ${name})
  endif()
endfunction()
merchantry_precompiled(merchantry_pch HEADERS ${MERCHANTRY_PRECOMPILED})
merchantry_precompiled(merchantry_light_pch LIGHTLY HEADERS ${MERCHANTRY_PRECOMPILED})
if(MERCHANTRY_DESKTOP)
  find_package(Qt6 REQUIRED COMPONENTS Widgets Svg PrintSupport)
  merchantry_precompiled(merchantry_qt_pch LINK Qt6::Widgets Qt6::Svg Qt6::PrintSupport
    HEADERS ${MERCHANTRY_PRECOMPILED} ${MERCHANTRY_PRECOMPILED_QT})
endif()

# merchantry_library(name [LIGHTLY | QT] SOURCES … LINK …): one static library of one folder; LIGHTLY where speed is not measured, QT for what
# draws.
function(merchantry_library name)
  cmake_parse_arguments(ARG "LIGHTLY;QT" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC merchantry_flags ${ARG_LINK})
  if(ARG_LIGHTLY)
    target_compile_options(${name} PRIVATE ${MERCHANTRY_LIGHTLY})
    merchantry_use_precompiled(${name} merchantry_light_pch)
  elseif(ARG_QT)
    merchantry_use_precompiled(${name} merchantry_qt_pch)
  else()
    merchantry_use_precompiled(${name} merchantry_pch)
  endif()
endfunction()

# merchantry_program(name [QT] SOURCES … LINK …): one program; QT where its own files include Qt.
function(merchantry_program name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE merchantry_flags ${ARG_LINK})
  if(ARG_QT)
    merchantry_use_precompiled(${name} merchantry_qt_pch)
  else()
    merchantry_use_precompiled(${name} merchantry_pch)
  endif()
endfunction()

# merchantry_test_program(name [QT] SOURCES … LINK …): one program of tests; QT where they press keys in windows: those have a main of their own.
function(merchantry_test_program name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_compile_options(${name} PRIVATE ${MERCHANTRY_LIGHTLY})
  if(ARG_QT)
    target_link_libraries(${name} PRIVATE merchantry_flags ${ARG_LINK} merchantry_qttest)
    merchantry_use_precompiled(${name} merchantry_qttest_pch)
  else()
    target_link_libraries(${name} PRIVATE merchantry_flags ${ARG_LINK} GTest::gtest_main)
    merchantry_use_precompiled(${name} merchantry_test_pch)
  endif()
endfunction()

# merchantry_test_library(name SOURCES … LINK …): what several programs of tests in windows share.
function(merchantry_test_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_compile_options(${name} PRIVATE ${MERCHANTRY_LIGHTLY})
  target_link_libraries(${name} PUBLIC merchantry_flags ${ARG_LINK} merchantry_qttest)
  merchantry_use_precompiled(${name} merchantry_qttest_pch)
endfunction()

# merchantry_test(name [QT] SOURCES … LINK …): one test program of one folder, run by ctest.
function(merchantry_test name)
  merchantry_test_program(${name} ${ARGN})
  add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
endfunction()

# Libraries that several folders use.
find_package(SQLite3 REQUIRED)
find_package(Threads REQUIRED)
