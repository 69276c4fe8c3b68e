# LibreOffice's client interface: the target `uno_client`, for host/calc alone.
#
# The C++ headers are generated from the installed type libraries. The loader finds LibreOffice's
# own libraries through the run path, so no environment variable is needed.
set(LO_DIR /usr/lib/libreoffice CACHE PATH "LibreOffice's installation folder")

find_program(CPPUMAKER cppumaker HINTS ${LO_DIR}/sdk/bin REQUIRED)  # not on PATH
foreach(lib uno_sal uno_cppu uno_cppuhelpergcc3 uno_salhelpergcc3)
  find_library(LIB_${lib} ${lib} HINTS ${LO_DIR}/sdk/lib REQUIRED)
endforeach()

set(UNO_HEADERS ${CMAKE_BINARY_DIR}/uno)
set(UNO_TYPES ${LO_DIR}/program/types.rdb ${LO_DIR}/program/types/offapi.rdb)
file(MAKE_DIRECTORY ${UNO_HEADERS})
add_custom_command(
  OUTPUT ${UNO_HEADERS}/.stamp
  COMMAND ${CPPUMAKER} -Gc -O${UNO_HEADERS} ${UNO_TYPES}
  COMMAND ${CMAKE_COMMAND} -E touch ${UNO_HEADERS}/.stamp
  DEPENDS ${UNO_TYPES}
  COMMENT "Generating LibreOffice's interface headers"
  VERBATIM)
add_custom_target(uno_headers DEPENDS ${UNO_HEADERS}/.stamp)

add_library(uno_client INTERFACE)
add_dependencies(uno_client uno_headers)
target_include_directories(uno_client SYSTEM INTERFACE ${UNO_HEADERS} /usr/include/libreoffice)
target_compile_definitions(uno_client INTERFACE LINUX UNX)
target_link_libraries(uno_client INTERFACE ${LIB_uno_cppuhelpergcc3} ${LIB_uno_cppu}
                      ${LIB_uno_salhelpergcc3} ${LIB_uno_sal} Threads::Threads)
# Without the first the link fails, without the second the loader misses a library at run time.
target_link_options(uno_client INTERFACE -Wl,-rpath-link,${LO_DIR}/program
                    -Wl,-rpath,${LO_DIR}/program)
