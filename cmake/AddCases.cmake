# Included by CTest when it starts: adds the tests of a GoogleTest program one by one.
#
# gtest_discover_tests() does nearly that, but counts a test as skipped, whatever its exit status,
# when "SKIPPED" stands anywhere in what it prints.

# quorin_add_cases(PROGRAM property value...)
function(quorin_add_cases program)
  get_filename_component(name ${program} NAME)
  if(NOT EXISTS ${program})
    add_test(${name}_NOT_BUILT ${program})  # and so fails
    return()
  endif()
  set(list ${program}.cases)
  if(NOT EXISTS ${list} OR ${program} IS_NEWER_THAN ${list})
    execute_process(COMMAND ${program} --gtest_list_tests OUTPUT_VARIABLE output
                    TIMEOUT 60 RESULT_VARIABLE failure)
    if(failure)
      message(FATAL_ERROR "${program} does not list its tests: ${failure}")
    endif()
    file(WRITE ${list} "${output}")
  endif()
  # Without the values of parameters: a bracket or a semicolon in one would join or split the lines.
  file(READ ${list} text)
  string(REGEX REPLACE " *#[^\n]*" "" text "${text}")
  string(REPLACE "\n" ";" lines "${text}")
  set(suite)
  foreach(line IN LISTS lines)
    if(line MATCHES "^([^ ]+\\.)$")
      set(suite ${CMAKE_MATCH_1})
    elseif(line MATCHES "^  ([^ ]+)$")
      add_test(${suite}${CMAKE_MATCH_1} ${program} --gtest_filter=${suite}${CMAKE_MATCH_1})
      set_tests_properties(${suite}${CMAKE_MATCH_1} PROPERTIES ${ARGN})
    endif()
  endforeach()
endfunction()
