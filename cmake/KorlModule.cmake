# How a module for the korl program is built, here and by those who find the package korl.

# Where the program looks for modules, below the folder that it is installed in.
set(KORL_MODULE_DIR lib/korl/modules)

# korl_module(TARGET [NAME name] SOURCES files... LINK targets...): a module as a target. Its entry point, the one
# function that it shows to the outside, is KORL_API_2026_JAN_22__NAME; NAME is that of the target unless given.
# When the module is unloaded nothing of it stays in the process.
function(korl_module target)
  cmake_parse_arguments(ARG "" "NAME" "SOURCES;LINK" ${ARGN})
  if(NOT ARG_NAME)
    set(ARG_NAME ${target})
  endif()
  add_library(${target} MODULE ${ARG_SOURCES})
  target_link_libraries(${target} PRIVATE korl::doltra ${ARG_LINK})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A symbol that is unique in the process would keep the library mapped for ever. Clang makes none.
    target_compile_options(${target} PRIVATE -fno-gnu-unique)
  endif()

  set(exports ${CMAKE_CURRENT_BINARY_DIR}/${target}-exports.map)
  file(CONFIGURE OUTPUT ${exports} CONTENT "{ global: KORL_API_2026_JAN_22__@ARG_NAME@; local: *; };\n" @ONLY)
  target_link_options(${target} PRIVATE -Wl,-z,now -Wl,--exclude-libs,ALL -Wl,--version-script=${exports})
  if(NOT (KORL_SANITIZE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang"))
    # Clang leaves its sanitizer runtime to be found in the program.
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
  set_target_properties(${target} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
                        INSTALL_RPATH "$ORIGIN/../.." LINK_DEPENDS ${exports})
endfunction()
