# Every target of ours gets the same strict warnings. Third-party headers are found as system
# headers, so their warnings never reach us.
function(quillery_set_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual)
  if(QUILLERY_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
    # GCC 12 at -O3 reports these from inside the standard library's inlined string and optional
    # code on correct programs; they stay warnings there, and errors everywhere else.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      target_compile_options(${target} PRIVATE
        $<$<CONFIG:Release>:-Wno-error=restrict -Wno-error=maybe-uninitialized>)
    endif()
  endif()
endfunction()
