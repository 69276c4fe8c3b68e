# The few CMake words this project uses: one static library per folder, one test program per
# folder, everything with the same warnings and the same include root (the project's own folder).

add_library(quorin_options INTERFACE)
target_include_directories(quorin_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(quorin_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 takes the unused alternatives of a variant for uninitialised memory, and short strings
  # for overlapping ones.
  target_compile_options(quorin_options INTERFACE -Wno-maybe-uninitialized -Wno-restrict)
endif()
if(QUORIN_JOINED)
  # About JSON values in a list g++ is wrong there.
  target_compile_options(quorin_options INTERFACE -Wno-array-bounds)
endif()
if(QUORIN_WERROR)
  target_compile_options(quorin_options INTERFACE -Werror)
endif()
if(QUORIN_SANITIZE)
  target_compile_options(quorin_options INTERFACE -fsanitize=${QUORIN_SANITIZE}
                         -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(quorin_options INTERFACE -fsanitize=${QUORIN_SANITIZE})
endif()
if(QUORIN_FUZZ)
  target_compile_options(quorin_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
find_package(Threads REQUIRED)
target_link_libraries(quorin_options INTERFACE Threads::Threads)

# Reading headers is most of what it takes to compile for tests, so the common ones of the standard
# library are read once for all. The compiler then misses none of them: tests/lint/std_includes.py
# does, and so do releases, the fuzzers and the macOS check, which read them where they are
# included.
set(QUORIN_HEADERS
  <algorithm> <array> <atomic> <charconv> <chrono> <cmath> <condition_variable> <cstdint>
  <filesystem> <fstream> <functional> <map> <memory> <mutex> <optional> <set> <sstream> <string>
  <string_view> <thread> <utility> <variant> <vector>)
if(CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT QUORIN_FUZZ AND NOT APPLE)
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/headers.cpp CONTENT "")
  add_library(quorin_headers STATIC ${CMAKE_BINARY_DIR}/headers.cpp)
  target_link_libraries(quorin_headers PRIVATE quorin_options)
  target_precompile_headers(quorin_headers PRIVATE ${QUORIN_HEADERS})
endif()

function(quorin_reuse_headers target from)
  target_precompile_headers(${target} REUSE_FROM ${from})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # What is read so is no system header to it any more, and these are wrong about std::string.
    target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-stringop-overflow
                                             -Wno-stringop-overread)
  endif()
endfunction()

# quorin_join(TARGET COUNT [file...]): compiles COUNT sources as one. Reading the same headers for each
# is half of what it takes to compile them one by one, and more in tests. What two of them call alike
# inside of themselves clashes then: the files that are named stay by themselves, and so does
# Objective-C++, which CMake before 3.29 does not join.
function(quorin_join target count)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${count})
  get_target_property(alone ${target} SOURCES)
  list(FILTER alone INCLUDE REGEX "\\.mm$")
  list(APPEND alone ${ARGN})
  if(alone)
    set_source_files_properties(${alone} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
  endif()
endfunction()

# quorin_library(NAME SOURCES file... [ALONE file...] [LIBS library...]): one folder's static library.
# Presets join its sources; the test sources_stand_alone compiles each by itself.
function(quorin_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;ALONE;LIBS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES} ${ARG_ALONE})
  if(QUORIN_JOINED)
    quorin_join(${name} 12 ${ARG_ALONE})
  endif()
  target_link_libraries(${name} PUBLIC quorin_options ${ARG_LIBS})
  if(TARGET quorin_headers)
    quorin_reuse_headers(${name} quorin_headers)
  endif()
endfunction()

# Tests are most of what there is to compile, and each is run once or twice: code that takes less
# time to make is better there than code that takes less time to run.
function(quorin_compile_quickly target)
  if(CMAKE_BUILD_TYPE STREQUAL "Debug" AND NOT QUORIN_FUZZ)
    target_compile_options(${target} PRIVATE -O0 -g0)
  endif()
endfunction()

# The headers of GoogleTest and the common ones, read once for all tests.
function(quorin_read_headers_once test)
  if(APPLE)  # some tests there are of another language
    return()
  endif()
  if(NOT TARGET quorin_test_headers)
    file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/test_headers.cpp CONTENT "int main() {}\n")
    add_executable(quorin_test_headers ${CMAKE_BINARY_DIR}/test_headers.cpp)
    target_link_libraries(quorin_test_headers PRIVATE GTest::gmock quorin_options)
    quorin_compile_quickly(quorin_test_headers)
    target_precompile_headers(quorin_test_headers PRIVATE <gmock/gmock.h> <gtest/gtest.h>
                                                          ${QUORIN_HEADERS})
  endif()
  quorin_reuse_headers(${test} quorin_test_headers)
endfunction()

# quorin_suites(NAME file...): tests that several programs run, each with peers of its own. They are
# compiled once; a program that links NAME has them all.
function(quorin_suites name)
  add_library(${name} OBJECT ${ARGN})
  target_link_libraries(${name} PRIVATE GTest::gmock quorin_options)
  quorin_join(${name} 8)
  if(NOT APPLE)  # compiled as a program is, with its headers
    set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
    target_compile_options(${name} PRIVATE -fPIE)
  endif()
  quorin_compile_quickly(${name})
  quorin_read_headers_once(${name})
endfunction()

# The tests' own main. A program that skipped all of its tests ends with the status QUORIN_SKIPPED.
# What a program prints decides nothing: "SKIPPED" may stand there beside a failure.
set(QUORIN_SKIPPED 77)
set(QUORIN_ADD_CASES ${CMAKE_CURRENT_LIST_DIR}/AddCases.cmake)
set(QUORIN_TEST_MAIN ${CMAKE_CURRENT_LIST_DIR}/../tests/runner/Main.cpp)

function(quorin_link_test_main test)
  if(NOT TARGET quorin_test_main)
    add_library(quorin_test_main STATIC ${QUORIN_TEST_MAIN})
    target_link_libraries(quorin_test_main PUBLIC GTest::gmock PRIVATE quorin_options)
    quorin_compile_quickly(quorin_test_main)
  endif()
  target_link_libraries(${test} PRIVATE quorin_test_main)
endfunction()

# quorin_find_cases(TEST property value...): each of its tests becomes one of CTest's, with these.
function(quorin_find_cases test)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${test}_cases)
  list(JOIN ARGN " " properties)
  file(GENERATE OUTPUT ${script}-$<CONFIG>.cmake CONTENT
    "include(${QUORIN_ADD_CASES})\nquorin_add_cases($<TARGET_FILE:${test}> ${properties})\n")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${script}-${CMAKE_BUILD_TYPE}.cmake)
endfunction()

# quorin_long(TEST...): what finds a mistake that the tests beside it rarely miss, and takes long for it.
# ./test leaves these out and says so, ./test --full runs them all, .ci/run a share of them each day.
function(quorin_long)
  foreach(test IN LISTS ARGN)
    set_property(TEST ${test} APPEND PROPERTY LABELS long)
  endforeach()
endfunction()

# quorin_daily(TEST...): long ones that .ci/run has every day: what tells of the sources' looks alone.
function(quorin_daily)
  quorin_long(${ARGN})
  foreach(test IN LISTS ARGN)
    set_property(TEST ${test} APPEND PROPERTY LABELS daily)
  endforeach()
endfunction()

# quorin_add_whole(TEST LABEL TIMEOUT LOCK PROGRAM [argument...]): a GoogleTest program as one test of
# CTest's.
function(quorin_add_whole test label timeout lock)
  add_test(NAME ${test} COMMAND ${ARGN})
  set_tests_properties(${test} PROPERTIES LABELS ${label} TIMEOUT ${timeout}
    RESOURCE_LOCK ${lock} COST 500 ENVIRONMENT "GTEST_OUTPUT=xml:${CMAKE_BINARY_DIR}/results/${test}.xml"
    SKIP_RETURN_CODE ${QUORIN_SKIPPED})
endfunction()

# quorin_test(NAME LABEL unit|calc|ui [THREADS] [SEPARATE] [OPTIMIZED] [TIMEOUT seconds] [LOCK name]
#             SOURCES file... [ALONE file...] [LONG pattern...] LIBS library...):
# one GoogleTest program, an OPTIMIZED one compiled as the product is. Unit tests are found one by
# one, and so are SEPARATE ones; other programs that share an expensive peer (an office, a display)
# run as a whole and leave their counts in an XML file beside the build. Of those with a peer one of
# each LOCK runs at a time, which is the label unless it is said. COST orders the tests: these take the
# longest together, so they come first, and the long checks beside them. Of such a program the tests of
# the LONG patterns are one more test, NAME_long, for quorin_long.
function(quorin_test name)
  cmake_parse_arguments(ARG "THREADS;SEPARATE;OPTIMIZED" "LABEL;TIMEOUT;LOCK" "SOURCES;ALONE;LONG;LIBS" ${ARGN})
  if(NOT ARG_LOCK)
    set(ARG_LOCK ${ARG_LABEL})
  endif()
  if(NOT ARG_TIMEOUT AND (ARG_LABEL STREQUAL "unit" OR ARG_SEPARATE))
    set(ARG_TIMEOUT 120)
  elseif(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 600)  # up to a hundred tests, and a peer that a busy machine makes slow
  endif()
  if(QUORIN_SANITIZE)
    math(EXPR ARG_TIMEOUT "${ARG_TIMEOUT} * 5")  # what a sanitizer makes of the longest of them
  endif()
  add_executable(${name} ${ARG_SOURCES} ${ARG_ALONE})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gmock quorin_options)
  quorin_link_test_main(${name})
  if(NOT APPLE)  # some tests there are of another language
    quorin_join(${name} 8 ${ARG_ALONE})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # A fixture of a source that is included is taken for one of a header.
      target_compile_options(${name} PRIVATE -Wno-subobject-linkage)
    endif()
  endif()
  if(NOT ARG_OPTIMIZED)
    quorin_compile_quickly(${name})
    quorin_read_headers_once(${name})
  endif()
  if(QUORIN_SANITIZE STREQUAL "thread" AND NOT ARG_THREADS)
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
    return()
  endif()
  if(ARG_LABEL STREQUAL "unit")
    quorin_find_cases(${name} LABELS unit TIMEOUT ${ARG_TIMEOUT} SKIP_RETURN_CODE ${QUORIN_SKIPPED})
  elseif(ARG_SEPARATE)
    quorin_find_cases(${name} LABELS ${ARG_LABEL} TIMEOUT ${ARG_TIMEOUT} RESOURCE_LOCK ${ARG_LOCK}
                      COST 400 SKIP_RETURN_CODE ${QUORIN_SKIPPED})
  else()
    set(all ${ARG_LABEL} ${ARG_TIMEOUT} ${ARG_LOCK} ${name})
    if(ARG_LONG)
      list(JOIN ARG_LONG ":" long)
      quorin_add_whole(${name} ${all} --gtest_filter=-${long})
      quorin_add_whole(${name}_long ${all} --gtest_filter=${long})
      quorin_long(${name}_long)
    else()
      quorin_add_whole(${name} ${all})
    endif()
  endif()
endfunction()
