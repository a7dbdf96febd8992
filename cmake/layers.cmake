# Every header is included by its folder, "store/store.h", and a target sees a folder's
# headers only by linking the library that owns it. Each library therefore exports a
# directory of its own that holds one link, <prefix> -> its source folder; the source
# root itself is on no include path, so including a header of a folder the target does
# not link fails at compile time.
function(vantora_headers target prefix folder)
  set(stage "${CMAKE_BINARY_DIR}/include/${target}")
  file(MAKE_DIRECTORY "${stage}")
  if(NOT EXISTS "${stage}/${prefix}")
    file(CREATE_LINK "${folder}" "${stage}/${prefix}" RESULT linked SYMBOLIC)
    if(NOT linked EQUAL 0)
      message(FATAL_ERROR "cannot link ${stage}/${prefix} to ${folder}: ${linked}")
    endif()
  endif()
  get_target_property(kind ${target} TYPE)
  if(kind STREQUAL "EXECUTABLE")
    target_include_directories(${target} PRIVATE "${stage}")
  else()
    target_include_directories(${target} PUBLIC "${stage}")
  endif()
endfunction()
