# Copies the built page FROM into the folder TO. Without a page the program says so by itself.
file(MAKE_DIRECTORY ${TO})
if(EXISTS ${FROM})
  file(COPY ${FROM} DESTINATION ${TO})
else()
  message(STATUS "The page is not built yet (web/build.sh)")
endif()
