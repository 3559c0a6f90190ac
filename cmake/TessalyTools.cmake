# The media tools that the program runs as child processes, among its resources: the system's, or those of its own that
# packaging/tools has built.

set(TESSALY_TOOLS system CACHE STRING "Whose prober and converter: system, or own (made by packaging/tools)")
set_property(CACHE TESSALY_TOOLS PROPERTY STRINGS system own)
if(TESSALY_TOOLS STREQUAL "own")
  set(own_tools "${CMAKE_SOURCE_DIR}/build/tools")
  set(TESSALY_FFPROBE "${own_tools}/bin/ffprobe")
  set(TESSALY_FFMPEG "${own_tools}/bin/ffmpeg")
  if(NOT EXISTS "${TESSALY_FFPROBE}" OR NOT EXISTS "${TESSALY_FFMPEG}")
    message(FATAL_ERROR "There are no own tools in ${own_tools}: run packaging/tools first")
  endif()
elseif(TESSALY_TOOLS STREQUAL "system")
  find_program(TESSALY_FFPROBE ffprobe REQUIRED DOC "The prober, resource name \"sniffer\"")
  find_program(TESSALY_FFMPEG ffmpeg REQUIRED DOC "The converter, resource name \"creator\"")
else()
  message(FATAL_ERROR "TESSALY_TOOLS is ${TESSALY_TOOLS}, neither system nor own")
endif()

# Puts links to the tools beside the programs of this build.
function(tessaly_link_tools folder)
  file(MAKE_DIRECTORY "${folder}")
  file(CREATE_LINK "${TESSALY_FFPROBE}" "${folder}/sniffer" SYMBOLIC)
  file(CREATE_LINK "${TESSALY_FFMPEG}" "${folder}/creator" SYMBOLIC)
endfunction()
