# cmake --install: the layout that src/platform/bundle.cpp looks its resources up in.

find_program(TESSALY_GZIP gzip REQUIRED)
set(packaging "${CMAKE_SOURCE_DIR}/packaging")
set(packed "${CMAKE_BINARY_DIR}/packaging")

# Puts own tools, or links to the system's, into a folder (relative to the prefix) of the installation. A tool below the
# same prefix gets a relative link, as a package wants it.
function(tessaly_install_tools folder)
  if(TESSALY_TOOLS STREQUAL "own")
    install(PROGRAMS "${TESSALY_FFPROBE}" DESTINATION "${folder}" RENAME sniffer)
    install(PROGRAMS "${TESSALY_FFMPEG}" DESTINATION "${folder}" RENAME creator)
    install(DIRECTORY "${own_tools}/licences/" DESTINATION share/doc/tessaly/tools)
    return()
  endif()
  install(
    CODE "
    foreach(pair \"sniffer=${TESSALY_FFPROBE}\" \"creator=${TESSALY_FFMPEG}\")
      string(REPLACE \"=\" \";\" pair \"\${pair}\")
      list(GET pair 0 name)
      list(GET pair 1 tool)
      set(folder \"\${CMAKE_INSTALL_PREFIX}/${folder}\")
      cmake_path(IS_PREFIX CMAKE_INSTALL_PREFIX \"\${tool}\" NORMALIZE inside)
      if(inside)
        file(RELATIVE_PATH tool \"\${folder}\" \"\${tool}\")
      endif()
      message(STATUS \"Installing: \$ENV{DESTDIR}\${folder}/\${name} -> \${tool}\")
      file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${folder}\")
      file(CREATE_LINK \"\${tool}\" \"\$ENV{DESTDIR}\${folder}/\${name}\" SYMBOLIC)
      list(APPEND CMAKE_INSTALL_MANIFEST_FILES \"\${folder}/\${name}\")
    endforeach()")
endfunction()

# Installs a text compressed, as Debian wants manual pages and changelogs. The time is left out of the archive, so that
# the same text gives the same bytes.
function(tessaly_install_compressed text destination)
  cmake_path(GET text FILENAME name)
  string(REGEX REPLACE "\\.in$" "" name "${name}")
  configure_file("${text}" "${packed}/${name}" @ONLY)
  execute_process(COMMAND "${TESSALY_GZIP}" -9nkf "${packed}/${name}" COMMAND_ERROR_IS_FATAL ANY)
  install(FILES "${packed}/${name}.gz" DESTINATION "${destination}")
endfunction()

# What CHANGELOG.md tells, in the form that a package wants (see packaging/changes).
function(tessaly_changes form output)
  execute_process(COMMAND "${packaging}/changes" ${form} OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)
  set(${output} "${text}" PARENT_SCOPE)
endfunction()

# Draws packaging/icons anew: build this target, then run draw_icons src/ui/icons/tessaly.svg packaging/icons
add_executable(draw_icons EXCLUDE_FROM_ALL packaging/draw_icons.cpp)
target_link_libraries(draw_icons PRIVATE tessaly_rules Qt6::Gui)

if(APPLE)
  # Prepared, but not tried on a Mac yet: Tessaly.app with both programs, and with its tools in Contents/Resources.
  set_target_properties(
    tessaly
    PROPERTIES MACOSX_BUNDLE ON
               OUTPUT_NAME Tessaly
               MACOSX_BUNDLE_BUNDLE_NAME Tessaly
               MACOSX_BUNDLE_GUI_IDENTIFIER example.tessaly.Tessaly
               MACOSX_BUNDLE_BUNDLE_VERSION "${PROJECT_VERSION}"
               MACOSX_BUNDLE_SHORT_VERSION_STRING "${PROJECT_VERSION}")
  install(TARGETS tessaly BUNDLE DESTINATION .)
  install(TARGETS tessaly-cli RUNTIME DESTINATION Tessaly.app/Contents/MacOS)
  tessaly_install_tools(Tessaly.app/Contents/Resources)
else()
  # Every library of ours is linked in, and those of the system are found without help.
  set_target_properties(tessaly tessaly-cli PROPERTIES INSTALL_RPATH "")
  install(TARGETS tessaly tessaly-cli RUNTIME DESTINATION bin)
  tessaly_install_tools(lib/tessaly)
  install(FILES "${packaging}/tessaly.desktop" DESTINATION share/applications)
  tessaly_changes(metainfo TESSALY_RELEASES)
  configure_file("${packaging}/example.tessaly.Tessaly.metainfo.xml.in" "${packed}/example.tessaly.Tessaly.metainfo.xml" @ONLY)
  install(FILES "${packed}/example.tessaly.Tessaly.metainfo.xml" DESTINATION share/metainfo)
  install(FILES "${CMAKE_SOURCE_DIR}/src/ui/icons/tessaly.svg" DESTINATION share/icons/hicolor/scalable/apps)
  foreach(side 16 22 24 32 48 64 128 256 512)
    install(FILES "${packaging}/icons/${side}x${side}/tessaly.png" DESTINATION share/icons/hicolor/${side}x${side}/apps)
  endforeach()
  install(
    FILES "${packaging}/tessaly-cli.bash"
    DESTINATION share/bash-completion/completions
    RENAME tessaly-cli)
  install(FILES "${packaging}/copyright" DESTINATION share/doc/tessaly)
  tessaly_install_compressed("${packaging}/tessaly.1.in" share/man/man1)
  tessaly_install_compressed("${packaging}/tessaly-cli.1.in" share/man/man1)
  tessaly_changes(debian changelog)
  file(CONFIGURE OUTPUT "${packed}/changelog.in" CONTENT "${changelog}" @ONLY)
  tessaly_install_compressed("${packed}/changelog.in" share/doc/tessaly)
endif()
