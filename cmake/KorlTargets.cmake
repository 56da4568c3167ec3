# What every target of the project shares: where its output lands, how it finds its libraries, how it warns.

# The build tree has the layout of the install tree: bin/korl, lib/libsorvik.so, lib/korl/modules/libtovek_light.so.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(KORL_PYTHON_DIR lib/korl/python)
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
include(KorlModule)

if(KORL_SANITIZE)
  add_compile_options(-fsanitize=${KORL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${KORL_SANITIZE})
  add_compile_definitions(KORL_SANITIZED)
endif()

if(KORL_BUILD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link) # the fuzzer sees which way the code goes
endif()

add_library(korl_warnings INTERFACE)
target_compile_options(korl_warnings INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 warns of overlap where a std::string is put together by operator+, and is wrong (GCC bug 105651).
  target_compile_options(korl_warnings INTERFACE -Wno-restrict)
  if(KORL_SANITIZE)
    # Nor does it see what the sanitizers' own code initialises.
    target_compile_options(korl_warnings INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()

# korl_host_library(NAME SOURCES... LINK targets...): one shared library of the host layer, alias korl::NAME.
function(korl_host_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} SHARED ${ARG_SOURCES})
  add_library(korl::${name} ALIAS ${name})
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/host>
                                            $<INSTALL_INTERFACE:include/korl>)
  target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE $<BUILD_INTERFACE:korl_warnings>)
  # Each library brings those below it along, used or not: modules in other folders find them all loaded.
  target_link_options(${name} PRIVATE LINKER:--no-as-needed)
  set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN" VERSION ${PROJECT_VERSION}
                        SOVERSION ${PROJECT_VERSION_MAJOR})
  install(TARGETS ${name} EXPORT korl LIBRARY DESTINATION lib)
endfunction()

# korl_test(NAME SOURCES... LINK targets... LABELS labels...): one GoogleTest program; its tests are found by
# running it. A suite whose name ends in GLTest needs an OpenGL context and carries the label "gl".
function(korl_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/cmake/no_core_files.cpp)
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} korl_warnings GTest::gmock GTest::gtest_main)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests
                        INSTALL_RPATH "$ORIGIN/../lib")
  set(environment "")
  if(KORL_SANITIZE)
    # Mesa's thread that writes shaders to its cache may still hold memory when the leak check looks.
    set(environment ENVIRONMENT MESA_SHADER_CACHE_DISABLE=true)
    target_sources(${name} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/driver_leaks.cpp)
  endif()
  gtest_discover_tests(${name} TEST_FILTER -*GLTest.* PROPERTIES TIMEOUT 300 ${environment})
  gtest_discover_tests(${name} TEST_FILTER *GLTest.* PROPERTIES LABELS gl TIMEOUT 300 ${environment})
endfunction()

# korl_shell_library(NAME LINK targets...): one library of the shell, all the .cpp files of its folder in one static
# library, alias korl::NAME.
function(korl_shell_library name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_library(korl_${name} STATIC ${sources})
  add_library(korl::${name} ALIAS korl_${name})
  target_include_directories(korl_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(korl_${name} PUBLIC ${ARG_LINK} PRIVATE fmt::fmt korl_warnings)
endfunction()
