# How every target of the project is made. A folder is a link target; what it may include follows from LIBS.

add_library(hourbook_options INTERFACE)
target_compile_options(hourbook_options INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align)
target_compile_definitions(hourbook_options INTERFACE
  QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII QT_NO_FOREACH QT_MESSAGELOGCONTEXT)
target_include_directories(hourbook_options INTERFACE ${PROJECT_SOURCE_DIR})
# some forty test programs share the same libraries: lld links them in seconds where the usual linker takes a minute
target_link_options(hourbook_options INTERFACE -fuse-ld=lld)
if(HOURBOOK_WERROR)
  target_compile_options(hourbook_options INTERFACE -Werror)
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  # -g1: backtraces keep their lines, objects stay small
  target_compile_options(hourbook_options INTERFACE -g1)
endif()
if(HOURBOOK_SANITIZE)
  # clang (as the preset has it) builds this more than twice as fast as GCC 12, and its warnings are others
  target_compile_options(hourbook_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(hourbook_options INTERFACE -fsanitize=address,undefined)
endif()

if(HOURBOOK_FUZZ)
  # every library tells the fuzzer which of its branches an input took; -O1 is what makes a run of hours worth it
  target_compile_options(hourbook_options INTERFACE -O1
    -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(hourbook_options INTERFACE -fsanitize=address,undefined)
endif()

# Two precompiled headers, one without and one with widgets; every library reuses the one that suits it.
add_library(hourbook_pch_core OBJECT ${PROJECT_SOURCE_DIR}/cmake/pch.cpp)
target_link_libraries(hourbook_pch_core PUBLIC hourbook_options Qt6::Core)
target_precompile_headers(hourbook_pch_core PRIVATE ${PROJECT_SOURCE_DIR}/cmake/pch_core.h)
add_library(hourbook_pch_widgets OBJECT ${PROJECT_SOURCE_DIR}/cmake/pch.cpp)
target_link_libraries(hourbook_pch_widgets PUBLIC hourbook_options Qt6::Widgets)
target_precompile_headers(hourbook_pch_widgets PRIVATE ${PROJECT_SOURCE_DIR}/cmake/pch_widgets.h)
if(HOURBOOK_TESTS)
  # Qt Test without its two definitions that name the target's own folders: with them no two targets could share a
  # precompiled header. QFINDTESTDATA is what they are for, and no test uses it.
  add_library(hourbook_qtest INTERFACE)
  target_link_libraries(hourbook_qtest INTERFACE $<LINK_ONLY:Qt6::Test>)
  target_include_directories(hourbook_qtest SYSTEM INTERFACE
    $<TARGET_PROPERTY:Qt6::Test,INTERFACE_INCLUDE_DIRECTORIES>)
  add_library(hourbook_pch_test OBJECT ${PROJECT_SOURCE_DIR}/cmake/pch.cpp)
  target_link_libraries(hourbook_pch_test PUBLIC hourbook_options Qt6::Widgets hourbook_qtest GTest::gmock)
  target_precompile_headers(hourbook_pch_test PRIVATE ${PROJECT_SOURCE_DIR}/cmake/pch_test.h)
endif()

# hourbook_library(NAME [WIDGETS] SOURCES ... [LIBS public link targets ...] [PRIVATE_LIBS ...])
function(hourbook_library name)
  cmake_parse_arguments(ARG "WIDGETS" "" "SOURCES;LIBS;PRIVATE_LIBS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC hourbook_options Qt6::Core ${ARG_LIBS} PRIVATE ${ARG_PRIVATE_LIBS})
  if(ARG_WIDGETS)
    target_link_libraries(${name} PUBLIC Qt6::Widgets)
    target_precompile_headers(${name} REUSE_FROM hourbook_pch_widgets)
  else()
    target_precompile_headers(${name} REUSE_FROM hourbook_pch_core)
  endif()
endfunction()

# hourbook_tests(NAME [WHOLE] SOURCES ... LIBS ... [TIMEOUT seconds]): a GoogleTest program; each of its tests is a
# ctest. With WHOLE the program is one ctest: for tests that share something which is dear to start. Under the
# sanitizers every program is one, since starting a sanitized process costs more than most tests; so what one
# test leaves behind for the next shows there too.
function(hourbook_tests name)
  cmake_parse_arguments(ARG "WHOLE" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} tests_support Qt6::Widgets hourbook_qtest GTest::gmock)
  target_precompile_headers(${name} REUSE_FROM hourbook_pch_test)
  if(HOURBOOK_SANITIZE)
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES TIMEOUT 1200 ENVIRONMENT QT_QPA_PLATFORM=offscreen)
  elseif(ARG_WHOLE)
    add_test(NAME ${name} COMMAND ${name} --gtest_brief=1)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${ARG_TIMEOUT} ENVIRONMENT QT_QPA_PLATFORM=offscreen)
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT ${ARG_TIMEOUT}
      ENVIRONMENT QT_QPA_PLATFORM=offscreen)
  endif()
endfunction()
if(HOURBOOK_TESTS)
  include(GoogleTest)
endif()

# hourbook_program(NAME [WIDGETS] SOURCES ... LIBS ...): a program, in the build folder's bin/.
function(hourbook_program name)
  cmake_parse_arguments(ARG "WIDGETS" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE hourbook_options Qt6::Core ${ARG_LIBS})
  if(ARG_WIDGETS)
    target_link_libraries(${name} PRIVATE Qt6::Widgets)
    target_precompile_headers(${name} REUSE_FROM hourbook_pch_widgets)
  else()
    target_precompile_headers(${name} REUSE_FROM hourbook_pch_core)
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()
