# Copies what programs and plugins need to run, but for the C and C++ run time, into a folder:
# cmake -DFILES=FILE;FILE… -DTO=FOLDER -P collect_libraries.cmake
# The files are programs and plugins.
file(
  GET_RUNTIME_DEPENDENCIES
  RESOLVED_DEPENDENCIES_VAR found
  UNRESOLVED_DEPENDENCIES_VAR missing
  CONFLICTING_DEPENDENCIES_PREFIX conflict
  LIBRARIES ${FILES}
  PRE_EXCLUDE_REGEXES "^ld-linux" "^lib(c|m|dl|rt|pthread|resolv|util|anl|mvec)\\.so" "^lib(stdc\\+\\+|gcc_s)\\.so")
if(missing)
  message(FATAL_ERROR "not to be found: ${missing}")
endif()
foreach(library IN LISTS found)
  get_filename_component(name "${library}" NAME)
  file(REAL_PATH "${library}" real)
  file(COPY_FILE "${real}" "${TO}/${name}")
endforeach()
