# What every target of this house is compiled with, said once.

# The library and the plug-in ship as one module: everything is position independent and hidden.
add_library(zerva_options INTERFACE)
target_compile_features(zerva_options INTERFACE cxx_std_20)
target_compile_options(
  zerva_options
  INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2
            # Builds are the same to the byte whatever folder they run in.
            -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
if(ZERVA_WERROR)
  target_compile_options(zerva_options INTERFACE -Werror)
endif()
if(ZERVA_SANITIZE)
  target_compile_options(
    zerva_options INTERFACE -fsanitize=${ZERVA_SANITIZE} -fno-sanitize-recover=all
                            -fno-omit-frame-pointer)
  target_link_options(zerva_options INTERFACE -fsanitize=${ZERVA_SANITIZE})
endif()
# The address sanitizer sees most of what these four checks see, and they double the time that it
# takes to compile the tests' own code. What ships, and what the fuzzer searches, keeps them.
if(ZERVA_SANITIZE MATCHES "undefined" AND NOT ZERVA_SANITIZE MATCHES "fuzzer")
  target_compile_options(
    zerva_options INTERFACE $<$<BOOL:$<TARGET_PROPERTY:ZERVA_IS_TOOL>>:-fno-sanitize=null
                            -fno-sanitize=alignment -fno-sanitize=object-size -fno-sanitize=vptr>)
endif()

# zerva_product(TARGET): the settings of code that ships.
function(zerva_product target)
  target_link_libraries(${target} PRIVATE $<BUILD_INTERFACE:zerva_options>)
  set_target_properties(
    ${target}
    PROPERTIES CXX_EXTENSIONS OFF
               POSITION_INDEPENDENT_CODE ON
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON)
endfunction()

# zerva_tool(TARGET): the settings of tests, demo and benches.
function(zerva_tool target)
  target_link_libraries(${target} PRIVATE zerva_options)
  # GCC 12 takes copies inside std::string's concatenation for copies out of bounds.
  target_compile_options(
    ${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-array-bounds -Wno-restrict
                      -Wno-stringop-overflow -Wno-stringop-overread>)
  set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF ZERVA_IS_TOOL ON)
endfunction()
