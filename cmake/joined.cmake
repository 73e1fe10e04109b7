# How the sources are compiled: the sources of a room in joined units, a few files each, behind a precompiled header of
# the standard library. Most of the work on a small file is reading the same headers and instantiating the same
# templates once more. Without VOKTARN_JOINED each file is compiled alone: for counting what the tests reach, for planted
# faults, and as the proof that every file includes what it uses.
option(VOKTARN_JOINED "Compile sources in joined units behind precompiled headers" ON)

# Small enough that a change to one file is compiled in seconds. The linter takes more at a time.
set(VOKTARN_JOINED_FILES 8 CACHE STRING "How many sources make a joined unit")

# voktarn_headers(NAME PIC HEADER...): a library of nothing but a precompiled header, with the options of its users.
function(voktarn_headers name pic)
  if(NOT VOKTARN_JOINED)
    return()
  endif()
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/${name}.cpp CONTENT "")
  add_library(${name} OBJECT ${CMAKE_BINARY_DIR}/${name}.cpp)
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ${pic})
  target_link_libraries(${name} PRIVATE voktarn_options)
  target_precompile_headers(${name} PRIVATE ${ARGN})
  # What ccache needs to know of precompiled headers.
  target_compile_options(${name} PUBLIC $<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endfunction()

# voktarn_joined(TARGET HEADERS [APART FILE...]): joins the sources of the target behind the headers, except those whose
# unnamed namespaces share names with another file of theirs.
function(voktarn_joined target headers)
  cmake_parse_arguments(PARSE_ARGV 2 joined "" "" "APART")
  if(NOT VOKTARN_JOINED)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${VOKTARN_JOINED_FILES})
  target_precompile_headers(${target} REUSE_FROM ${headers})
  # g++ 12 sees impossible lengths in string concatenations that it has inlined from several files.
  target_compile_options(${target} PRIVATE "$<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess;-Wno-stringop-overflow;-Wno-array-bounds>")
  list(TRANSFORM joined_APART PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  set_source_files_properties(${joined_APART} TARGET_DIRECTORY ${target} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
