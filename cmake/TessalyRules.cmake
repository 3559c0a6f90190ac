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
            # The macros of newer QtTest convert their time limits.
            "$<$<NOT:$<BOOL:$<TARGET_PROPERTY:TESSALY_USES_QTTEST>>>:-Wconversion>"
            -Wold-style-cast
            -Wno-missing-field-initializers # a designated initializer leaves the rest at its default on purpose
            -fstack-protector-strong
            # One setting for libraries and programs (for these CMake says -fPIE before it): they share precompiled headers.
            -fPIC)
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
if(TESSALY_COVERAGE)
  # Threads count exactly; otherwise a sum can come out negative.
  target_compile_options(tessaly_rules INTERFACE --coverage -fprofile-update=atomic)
  target_link_options(tessaly_rules INTERFACE --coverage)
endif()
if(TESSALY_FUZZ)
  target_compile_options(tessaly_rules INTERFACE -fsanitize=fuzzer-no-link)
endif()

# What nearly every source includes, compiled once for each kind of target. Sources include what they use all the same.
function(tessaly_precompiled name)
  file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/precompiled/${name}.cpp" CONTENT "")
  add_library(tessaly_precompiled_${name} STATIC "${CMAKE_BINARY_DIR}/precompiled/${name}.cpp")
  set_target_properties(tessaly_precompiled_${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF POSITION_INDEPENDENT_CODE ON)
  target_link_libraries(tessaly_precompiled_${name} PRIVATE tessaly_rules ${ARGN})
endfunction()

tessaly_precompiled(core Qt6::Core)
target_precompile_headers(tessaly_precompiled_core PRIVATE <optional> <string> <vector> <QProcess> <QStringList> <QUrl>)
tessaly_precompiled(widgets Qt6::Widgets)
target_precompile_headers(tessaly_precompiled_widgets PRIVATE <optional> <string> <vector> <QtWidgets>)
if(TESSALY_TESTS)
  # Qt defines this differently in each folder, for a lookup of test data that is not used here.
  get_target_property(test_definitions Qt6::Test INTERFACE_COMPILE_DEFINITIONS)
  list(FILTER test_definitions EXCLUDE REGEX "QT_TESTCASE_(BUILD|SOURCE)DIR")
  set_target_properties(Qt6::Test PROPERTIES INTERFACE_COMPILE_DEFINITIONS "${test_definitions}")
  tessaly_precompiled(test Qt6::Test)
  target_precompile_headers(tessaly_precompiled_test PRIVATE <optional> <string> <vector> <QProcess> <QTest>
                            <QSignalSpy> <QTemporaryDir>)
  tessaly_precompiled(gui_test Qt6::Widgets Qt6::Test)
  target_precompile_headers(tessaly_precompiled_gui_test PRIVATE <optional> <string> <vector> <QtWidgets> <QTest>
                            <QSignalSpy>)
  # A test waits more than it computes: left as it stands, its source compiles in two thirds of the time.
  set(tessaly_test_options -O0)
  target_compile_options(tessaly_precompiled_test PRIVATE ${tessaly_test_options})
  target_compile_options(tessaly_precompiled_gui_test PRIVATE ${tessaly_test_options})
  set_target_properties(tessaly_precompiled_test tessaly_precompiled_gui_test PROPERTIES TESSALY_USES_QTTEST ON)
endif()

# Lets a target use one of them.
function(tessaly_use_precompiled target name)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  if(name MATCHES "test$")
    target_compile_options(${target} PRIVATE ${tessaly_test_options})
    set_target_properties(${target} PROPERTIES TESSALY_USES_QTTEST ON)
  endif()
  target_precompile_headers(${target} REUSE_FROM tessaly_precompiled_${name})
endfunction()

# tessaly_library(<room> SOURCES … LINKS …): the static library of one folder under src/.
function(tessaly_library room)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  add_library(tessaly_${room} STATIC ${ARG_SOURCES})
  target_link_libraries(tessaly_${room} PUBLIC tessaly_rules ${ARG_LINKS})
  if(room MATCHES "^(ui|app)$")
    tessaly_use_precompiled(tessaly_${room} widgets)
  elseif(NOT room STREQUAL "json")
    tessaly_use_precompiled(tessaly_${room} core)
  endif()
endfunction()

# tessaly_test(<name> [GUI] [SOURCES …] LINKS … [FIXTURES …]): the Qt Test program <name>_test.cpp of
# one folder under tests/, with further sources if it has any. CTest knows it as <folder>_<name>, its target is
# test_<folder>_<name>, and it runs without a display.
function(tessaly_test name)
  cmake_parse_arguments(ARG "GUI" "" "SOURCES;LINKS;FIXTURES" ${ARGN})
  cmake_path(GET CMAKE_CURRENT_SOURCE_DIR FILENAME room)
  set(test ${room}_${name})
  set(target test_${test})
  set(forms ${ARG_SOURCES})
  list(FILTER forms INCLUDE REGEX "\\.ui$")
  if(forms)
    qt_wrap_ui(form_headers ${forms})
  endif()
  qt_generate_moc(${name}_test.cpp "${CMAKE_CURRENT_BINARY_DIR}/${name}_test.moc" TARGET ${target})
  add_executable(${target} ${name}_test.cpp "${CMAKE_CURRENT_BINARY_DIR}/${name}_test.moc" ${form_headers} ${ARG_SOURCES})
  target_include_directories(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}")
  target_link_libraries(${target} PRIVATE tessaly_rules tessaly_test_support ${ARG_LINKS} Qt6::Test)
  if(ARG_GUI)
    target_link_libraries(${target} PRIVATE Qt6::Widgets)
    tessaly_use_precompiled(${target} gui_test)
  else()
    tessaly_use_precompiled(${target} test)
  endif()
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests/bin")
  add_test(NAME ${test} COMMAND ${target})
  set_tests_properties(${test} PROPERTIES LABELS ${room} ENVIRONMENT
                                          "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8")
  if(ARG_FIXTURES)
    set_tests_properties(${test} PROPERTIES FIXTURES_REQUIRED "${ARG_FIXTURES}")
  endif()
endfunction()
