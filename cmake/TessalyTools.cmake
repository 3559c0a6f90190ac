# The media tools that the program runs as child processes, as links among its resources.

find_program(TESSALY_FFPROBE ffprobe REQUIRED DOC "The prober, resource name \"sniffer\"")
find_program(TESSALY_FFMPEG ffmpeg REQUIRED DOC "The converter, resource name \"creator\"")

# Puts links to the system's tools beside the programs of this build.
function(tessaly_link_tools folder)
  file(MAKE_DIRECTORY "${folder}")
  file(CREATE_LINK "${TESSALY_FFPROBE}" "${folder}/sniffer" SYMBOLIC)
  file(CREATE_LINK "${TESSALY_FFMPEG}" "${folder}/creator" SYMBOLIC)
endfunction()
