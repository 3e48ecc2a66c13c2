# Run by `cmake --install`: installs the headers of Source that match Public, those of Private apart, and all of ours that they
# include, into Destination.

cmake_minimum_required(VERSION 3.25)

list(TRANSFORM Public PREPEND "${Source}/")
file(GLOB_RECURSE Waiting RELATIVE "${Source}" LIST_DIRECTORIES false ${Public})
list(FILTER Waiting EXCLUDE REGEX "${Private}")
set(Headers)
while(Waiting)
  list(POP_FRONT Waiting Header)
  if(NOT Header IN_LIST Headers)
    list(APPEND Headers "${Header}")
    file(STRINGS "${Source}/${Header}" Lines REGEX "^#include \"")
    list(TRANSFORM Lines REPLACE "^#include \"([^\"]+)\".*" "\\1")
    list(APPEND Waiting ${Lines})
  endif()
endwhile()
foreach(Header IN LISTS Headers)
  cmake_path(GET Header PARENT_PATH Folder)
  file(INSTALL "${Source}/${Header}" DESTINATION "${Destination}/${Folder}")
endforeach()
