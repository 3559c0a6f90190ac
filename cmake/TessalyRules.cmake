# Every target links tessaly_rules: the one place for standard, warnings, hardening and the Qt strictness macros.

add_library(tessaly_rules INTERFACE)
target_compile_features(tessaly_rules INTERFACE cxx_std_20)
target_include_directories(tessaly_rules INTERFACE "${CMAKE_SOURCE_DIR}/src")
target_compile_options(
  tessaly_rules
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            -Wcast-align
            -Wformat=2
            -fstack-protector-strong)
target_compile_definitions(
  tessaly_rules
  INTERFACE _GLIBCXX_ASSERTIONS
            QT_NO_CAST_FROM_ASCII
            QT_NO_CAST_TO_ASCII
            QT_NO_CAST_FROM_BYTEARRAY
            QT_NO_URL_CAST_FROM_STRING
            QT_NO_FOREACH
            QT_NO_KEYWORDS
            QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
            QT_DISABLE_DEPRECATED_BEFORE=0x060400)

if(TESSALY_WARNINGS_AS_ERRORS)
  target_compile_options(tessaly_rules INTERFACE -Werror)
endif()
if(TESSALY_SANITIZE)
  target_compile_options(tessaly_rules INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
                                                 -fno-omit-frame-pointer)
  target_link_options(tessaly_rules INTERFACE -fsanitize=address,undefined)
elseif(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(tessaly_rules INTERFACE -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  target_link_options(tessaly_rules INTERFACE -Wl,-z,relro,-z,now)
endif()
if(TESSALY_FUZZ)
  target_compile_options(tessaly_rules INTERFACE -fsanitize=fuzzer-no-link)
endif()

# tessaly_library(<room> SOURCES … LINKS …): the static library of one folder under src/.
function(tessaly_library room)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(tessaly_${room} STATIC ${ARG_SOURCES})
  target_link_libraries(tessaly_${room} PUBLIC tessaly_rules ${ARG_LINKS})
endfunction()

# tessaly_test(<name> [GUI] SOURCES … LINKS … [LABELS …] [FIXTURES …] [TIMEOUT seconds]): one Qt Test program under
# CTest. It runs without a display.
function(tessaly_test name)
  cmake_parse_arguments(ARG "GUI" "TIMEOUT" "SOURCES;LINKS;LABELS;FIXTURES" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(test_${name} ${ARG_SOURCES})
  target_link_libraries(test_${name} PRIVATE tessaly_rules tessaly_test_support ${ARG_LINKS} Qt6::Test)
  if(ARG_GUI)
    target_link_libraries(test_${name} PRIVATE Qt6::Widgets)
  endif()
  set_target_properties(test_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests/bin")
  add_test(NAME ${name} COMMAND test_${name})
  set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} LABELS "${ARG_LABELS}" ENVIRONMENT
                                          "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
  if(ARG_FIXTURES)
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED "${ARG_FIXTURES}")
  endif()
endfunction()
