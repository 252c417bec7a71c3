# Builds for macOS on Linux: Zig brings the compiler, the headers and the C++ runtime, LLVM the
# linker. ZERVA_MACOS_ARCH says for which processor; scripts/bundle installs what is needed.

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${ZERVA_MACOS_ARCH})
if(ZERVA_MACOS_ARCH STREQUAL "arm64")
  set(ZERVA_MACOS_MINIMUM 11.0)
  set(target aarch64-macos.${ZERVA_MACOS_MINIMUM})
elseif(ZERVA_MACOS_ARCH STREQUAL "x86_64")
  set(ZERVA_MACOS_MINIMUM 10.13)
  set(target x86_64-macos.${ZERVA_MACOS_MINIMUM})
else()
  message(FATAL_ERROR "ZERVA_MACOS_ARCH is '${ZERVA_MACOS_ARCH}'; set it to x86_64 or arm64")
endif()
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ZERVA_MACOS_ARCH)

cmake_path(SET build_folder NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../build")
set(zig_packages "${build_folder}/tools/node_modules/@zigc")
# The package of the one processor that the lock file pins a compiler for.
find_program(ZERVA_ZIG zig PATHS "${zig_packages}/linux-x64/bin" NO_DEFAULT_PATH)
find_program(ZERVA_LD64 ld64.lld-16)
find_program(CMAKE_AR llvm-ar-16)
find_program(CMAKE_RANLIB llvm-ranlib-16)
find_program(CMAKE_INSTALL_NAME_TOOL llvm-install-name-tool-16)
foreach(tool ZERVA_ZIG ZERVA_LD64 CMAKE_AR CMAKE_RANLIB CMAKE_INSTALL_NAME_TOOL)
  if(NOT ${tool})
    message(FATAL_ERROR "A tool for macOS is missing (${tool}); scripts/bundle installs all of them")
  endif()
endforeach()
set(ZERVA_ZIG_LIBRARIES "${zig_packages}/lib/libc/darwin")

if(NOT DEFINED ENV{ZIG_GLOBAL_CACHE_DIR})
  set(ENV{ZIG_GLOBAL_CACHE_DIR} "${build_folder}/zig-cache")
endif()
set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
                                ZIG_GLOBAL_CACHE_DIR=$ENV{ZIG_GLOBAL_CACHE_DIR})

set(CMAKE_CXX_COMPILER "${ZERVA_ZIG}" c++)
set(CMAKE_CXX_FLAGS_INIT "-target ${target} -g0 -fno-sanitize=all")
# Zig's own linker knows nothing of bundles and export lists, so nothing is linked with it.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_USER_MAKE_RULES_OVERRIDE_CXX "${CMAKE_CURRENT_LIST_DIR}/macos_link.cmake")

set(CMAKE_OSX_SYSROOT "")
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
