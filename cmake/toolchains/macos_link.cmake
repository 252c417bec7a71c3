# How a bundle is linked for macOS on Linux: by LLVM's linker, called directly, with the C++
# runtime that Zig builds.

# Zig builds its libc++, libc++abi and compiler-rt when a link asks for them, and tells nobody where
# in its cache it keeps them. A throw-away link makes them and shows their paths.
function(zerva_zig_runtime result)
  set(probe "${CMAKE_BINARY_DIR}/zig-runtime")
  file(WRITE "${probe}.cpp" "int probe() { return 0; }\n")
  separate_arguments(flags UNIX_COMMAND "${CMAKE_CXX_FLAGS_INIT}")
  execute_process(
    COMMAND ${CMAKE_COMMAND} -E env ZIG_VERBOSE_LINK=1 "${ZERVA_ZIG}" c++ ${flags} -O2 -shared
            "${probe}.cpp" -o "${probe}.dylib"
    OUTPUT_VARIABLE shown
    ERROR_VARIABLE shown)
  string(REGEX MATCHALL "o/[0-9a-f]+/lib(c\\+\\+|c\\+\\+abi|compiler_rt)\\.a" archives "${shown}")
  list(REMOVE_DUPLICATES archives)
  list(TRANSFORM archives PREPEND "$ENV{ZIG_GLOBAL_CACHE_DIR}/")
  list(LENGTH archives count)
  if(NOT count EQUAL 3)
    message(FATAL_ERROR "Zig did not show its three runtime archives but said:\n${shown}")
  endif()
  set(${result} ${archives} CACHE INTERNAL "Archives of Zig's C++ runtime")
endfunction()

foreach(archive IN LISTS ZERVA_ZIG_RUNTIME)
  if(NOT EXISTS "${archive}")
    unset(ZERVA_ZIG_RUNTIME CACHE)
  endif()
endforeach()
if(NOT DEFINED ZERVA_ZIG_RUNTIME)
  message(STATUS "Building the C++ runtime for ${ZERVA_MACOS_ARCH} (a minute, the first time)")
  zerva_zig_runtime(ZERVA_ZIG_RUNTIME)
endif()

set(CMAKE_CXX_LINKER_WRAPPER_FLAG "")
set(CMAKE_CXX_LINKER_WRAPPER_FLAG_SEP "")
# The map file beside the module tells tests where its inner variables lie.
string(
  CONCAT CMAKE_CXX_CREATE_SHARED_MODULE
         "\"${ZERVA_LD64}\" -arch ${ZERVA_MACOS_ARCH}"
         " -platform_version macos ${ZERVA_MACOS_MINIMUM} ${ZERVA_MACOS_MINIMUM}"
         " -syslibroot / -bundle -adhoc_codesign -map <TARGET>.map"
         " <LINK_FLAGS> -o <TARGET> <OBJECTS> <LINK_LIBRARIES>")
foreach(archive IN LISTS ZERVA_ZIG_RUNTIME)
  string(APPEND CMAKE_CXX_CREATE_SHARED_MODULE " \"${archive}\"")
endforeach()
string(APPEND CMAKE_CXX_CREATE_SHARED_MODULE " \"${ZERVA_ZIG_LIBRARIES}/libSystem.tbd\"")
