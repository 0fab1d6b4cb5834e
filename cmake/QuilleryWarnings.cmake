# Every target of ours gets the same strict warnings. Third-party headers are found as system
# headers, so their warnings never reach us.
function(quillery_set_warnings target)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual)
  if(QUILLERY_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
