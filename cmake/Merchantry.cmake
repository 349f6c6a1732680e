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

# merchantry_library(name SOURCES … LINK …): one static library of one folder.
function(merchantry_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC merchantry_flags ${ARG_LINK})
endfunction()

# merchantry_test(name SOURCES … LINK …): one test program of one folder, run by ctest.
function(merchantry_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE merchantry_flags ${ARG_LINK} GTest::gtest_main)
  add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY ${CMAKE_SOURCE_DIR})
endfunction()

# Libraries that several folders use.
find_package(SQLite3 REQUIRED)
find_package(Threads REQUIRED)
