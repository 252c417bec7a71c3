# No header of the library includes itself, by whatever way round, and the log interface knows
# nothing of the house but its text class.
#
#   cmake -D HEADERS=common/inc -D WORK=FOLDER -P header_order_test.cmake

cmake_minimum_required(VERSION 3.25)

# The headers of `folder` that its header `name` includes.
function(house_includes folder name result)
  file(STRINGS "${folder}/${name}" lines REGEX "^[ \t]*#[ \t]*include")
  set(found "")
  foreach(line IN LISTS lines)
    string(REGEX REPLACE ".*include[ \t]*[<\"]([^>\"]*)[>\"].*" "\\1" included "${line}")
    if(EXISTS "${folder}/${included}")
      list(APPEND found "${included}")
    endif()
  endforeach()
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

# What is wrong with the headers of `folder`; "" when nothing is.
function(complaints_of folder result)
  set(complaints "")
  file(GLOB left RELATIVE "${folder}" "${folder}/*.h")
  foreach(name IN LISTS left)
    house_includes("${folder}" "${name}" "includes_${name}")
  endforeach()
  if(NOT "${includes_IUErrorLog.h}" STREQUAL "CString.h")
    list(APPEND complaints "IUErrorLog.h includes ${includes_IUErrorLog.h}")
  endif()
  # Headers that include none of those left are taken away, until only circles are left and what
  # includes them.
  set(before "")
  while(NOT left STREQUAL before)
    set(before "${left}")
    foreach(name IN LISTS before)
      set(bound FALSE)
      foreach(included IN LISTS "includes_${name}")
        if(included IN_LIST left)
          set(bound TRUE)
        endif()
      endforeach()
      if(NOT bound)
        list(REMOVE_ITEM left "${name}")
      endif()
    endforeach()
  endwhile()
  if(left)
    list(APPEND complaints "a circle among ${left}")
  endif()
  set(${result} "${complaints}" PARENT_SCOPE)
endfunction()

# A copy of the headers to which `lines` are added must be complained of.
function(expect_complaint what name lines)
  file(REMOVE_RECURSE "${WORK}")
  file(COPY "${HEADERS}/" DESTINATION "${WORK}")
  file(APPEND "${WORK}/${name}" "${lines}")
  complaints_of("${WORK}" complaints)
  if(NOT "${complaints}" MATCHES "${what}")
    message(SEND_ERROR "with ${lines} in ${name} there is only: ${complaints}")
  endif()
endfunction()

complaints_of("${HEADERS}" complaints)
if(NOT complaints STREQUAL "")
  message(SEND_ERROR "${HEADERS}: ${complaints}")
endif()

expect_complaint("^a circle among .*UObject" "UObject.h" "#include \"UObject.h\"\n")
expect_complaint("^a circle among .*CString" "CString.h" "#include \"IUErrorLog.h\"\n")
expect_complaint("^a circle among .*CString" "CString.h" "  #  include <UFileErrorLog.h>  // far\n")
expect_complaint("^IUErrorLog.h includes CString.h;UObject.h" "IUErrorLog.h"
                 "#include \"UObject.h\"\n")
file(REMOVE_RECURSE "${WORK}")
