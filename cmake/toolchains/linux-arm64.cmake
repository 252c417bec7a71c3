# Builds programs for ARM Linux on another processor, and runs them in an emulator.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
find_program(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
find_program(ZERVA_QEMU qemu-aarch64)
set(CMAKE_ASM_COMPILER "${CMAKE_CXX_COMPILER}")
foreach(tool CMAKE_CXX_COMPILER ZERVA_QEMU)
  if(NOT ${tool})
    message(FATAL_ERROR "A tool for ARM is missing (${tool}); \"scripts/install-packages test\""
                        " installs all of them")
  endif()
endforeach()

# The ARM C library, for the emulator: it lies beside the one that the compiler links.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libc.so.6
                OUTPUT_VARIABLE c_library OUTPUT_STRIP_TRAILING_WHITESPACE)
cmake_path(GET c_library PARENT_PATH library_folder)
cmake_path(GET library_folder PARENT_PATH system_root)
file(REAL_PATH "${system_root}" system_root)
set(CMAKE_CROSSCOMPILING_EMULATOR "${ZERVA_QEMU}" -L "${system_root}")

set(CMAKE_FIND_ROOT_PATH "${system_root}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
