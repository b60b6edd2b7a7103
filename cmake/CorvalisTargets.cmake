# Every library, program and test of Corvalis is declared through the functions below, so that all
# share one language level, one set of warnings and one include root (src/).
#
#   corvalis_library(NAME [QT_META] SOURCES ... [LINKS ...] [PRIVATE_LINKS ...])
#   corvalis_test(NAME [QT_META] [ENGINE] SOURCES ... [LINKS ...])
#
# QT_META runs moc and uic. A library's LINKS are its walls: a folder can include only what the
# libraries it links offer, and tests/layers checks the includes themselves.
# ENGINE marks a test that starts the page engine. Every test has the resolver rule that keeps pages off
# the network.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

find_program(CORVALIS_MOLD mold)
if(CORVALIS_MOLD)
  add_link_options(-fuse-ld=mold)
endif()

add_library(corvalis_options INTERFACE)
target_include_directories(corvalis_options INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_definitions(corvalis_options INTERFACE
  QT_NO_KEYWORDS QT_NO_FOREACH POINTERHOLDER_TRANSITION=4 CORVALIS_VERSION="${PROJECT_VERSION}")
# g++ 12 sees uninitialized members in moved std::optional and tl::expected where there are none.
target_compile_options(corvalis_options INTERFACE
  -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Werror
  -Wno-maybe-uninitialized)

function(corvalis_library name)
  cmake_parse_arguments(arg "QT_META" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC corvalis_options ${arg_LINKS} PRIVATE ${arg_PRIVATE_LINKS})
  if(arg_QT_META)
    set_target_properties(${name} PROPERTIES AUTOMOC ON AUTOUIC ON AUTORCC ON)
  endif()
endfunction()

function(corvalis_test name)
  cmake_parse_arguments(arg "QT_META;ENGINE" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE corvalis_options corvalis_test_support ${arg_LINKS} GTest::gmock)
  target_compile_definitions(${name} PRIVATE CORVALIS_SOURCE_DIR="${CMAKE_SOURCE_DIR}")
  if(arg_QT_META)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
  endif()
  add_test(NAME ${name} COMMAND ${name})
  set(environment QT_QPA_PLATFORM=offscreen
    "CORVALIS_ENGINE_ARGS=--host-resolver-rules='MAP * ~NOTFOUND, EXCLUDE localhost, EXCLUDE 127.0.0.1'")
  if(arg_ENGINE)
    set_tests_properties(${name} PROPERTIES LABELS engine)
  endif()
  set_tests_properties(${name} PROPERTIES ENVIRONMENT "${environment}")
endfunction()
