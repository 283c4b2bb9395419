# Compile flags shared by everything, and the functions that make our kinds of targets.
include(CTest)

# Headers that nearly every file of the windows and of their tests reads, compiled once for all: it halves the time.
# The tidy preset goes without (CMAKE_DISABLE_PRECOMPILE_HEADERS), so that each file still includes what it uses.
set(DRX9_QT_HEADERS <QApplication> <QDialog> <QLayout> <QMainWindow> <QMenu> <QPainter> <QStyle> <QTimer>
                    <algorithm> <functional> <memory> <string> <vector>)

add_library(drx9_flags INTERFACE)
target_compile_options(drx9_flags INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Clang's -Wshadow and g++'s agree but for captured lambda names; -Wconversion adds sign conversions only in g++'s C mode.
  target_compile_options(drx9_flags INTERFACE -Wno-sign-conversion)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # g++ 12 warns of overlapping copies inside std::string's own operator+ (GCC bug 105651), and of uninitialised
  # values inside an empty std::optional (GCC bug 80635).
  target_compile_options(drx9_flags INTERFACE -Wno-restrict -Wno-maybe-uninitialized)
endif()
if(DRX9_SANITIZE)
  target_compile_options(drx9_flags INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=all
                                              -fno-omit-frame-pointer)
  target_link_options(drx9_flags INTERFACE -fsanitize=address,undefined)
endif()
if(DRX9_FUZZ)
  target_compile_options(drx9_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# drx9_core_library(FOLDER [DEPENDS other folders]): all of src/FOLDER that is standard C++. Forms, controls and
# platform/qt are left to the user interface's libraries.
function(drx9_core_library folder)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp
       ${PROJECT_SOURCE_DIR}/src/${folder}/os/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/frm[^/]*$")
  set(depends drx9_flags)
  foreach(other IN LISTS ARG_DEPENDS)
    list(APPEND depends drx9_${other})
  endforeach()
  if(sources)
    add_library(drx9_${folder} STATIC ${sources})
    target_include_directories(drx9_${folder} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(drx9_${folder} PUBLIC ${depends})
  else()
    add_library(drx9_${folder} INTERFACE)
    target_include_directories(drx9_${folder} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(drx9_${folder} INTERFACE ${depends})
  endif()
endfunction()

# drx9_qt_library(NAME GLOBS patterns...): a library that may see Qt.
function(drx9_qt_library name)
  cmake_parse_arguments(ARG "" "" "GLOBS;LIBS" ${ARGN})
  set(patterns)
  foreach(pattern IN LISTS ARG_GLOBS)
    list(APPEND patterns ${PROJECT_SOURCE_DIR}/${pattern})
  endforeach()
  file(GLOB sources CONFIGURE_DEPENDS ${patterns})
  if(NOT sources)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE ${ARG_LIBS})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES AUTOMOC ON)
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LIBS} drx9_flags)
  target_precompile_headers(${name} PRIVATE ${DRX9_QT_HEADERS})
endfunction()

# drx9_test(FOLDER LIBS targets... [QT]): all tests/FOLDER/*_test.cpp as one program, each case a ctest case.
function(drx9_test folder)
  cmake_parse_arguments(ARG "QT" "TIMEOUT" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${folder}/*_test.cpp)
  if(NOT sources)
    return()
  endif()
  file(GLOB helpers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/tests/${folder}/*.cpp
       ${PROJECT_SOURCE_DIR}/tests/${folder}/*.h)
  set(name test_${folder})
  add_executable(${name} ${helpers})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_compile_definitions(${name} PRIVATE DRX9_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
                                             DRX9_BIN_DIR="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} drx9_flags)
  set(environment)
  if(ARG_QT)
    # A QApplication of its own stands in such a folder's main.
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PRIVATE GTest::gtest)
    target_precompile_headers(${name} PRIVATE <gtest/gtest.h> ${DRX9_QT_HEADERS})
    set(environment ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  gtest_discover_tests(${name} TEST_PREFIX ${folder}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${ARG_TIMEOUT} ${environment})
endfunction()
