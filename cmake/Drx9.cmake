# Compile flags shared by everything, and the functions that make our kinds of targets.
include(CTest)

# Headers that nearly every file of the windows and of their tests reads, compiled once for all: it halves the time.
# The tidy preset goes without (CMAKE_DISABLE_PRECOMPILE_HEADERS), so that each file still includes what it uses.
set(DRX9_QT_HEADERS <QApplication> <QDialog> <QLayout> <QMainWindow> <QMenu> <QPainter> <QStyle> <QTimer>
                    <algorithm> <functional> <memory> <string> <vector>)
# The same for all that is standard C++. Only under the sanitizers: with the optimiser g++ 12 warns of copies inside
# std::string's own code, which counts as ours once it comes out of a precompiled header.
set(DRX9_CORE_HEADERS <algorithm> <functional> <map> <memory> <optional> <string> <string_view> <vector>)

add_library(drx9_flags INTERFACE)
target_compile_options(drx9_flags INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  # Clang's -Wshadow and g++'s agree except for captured lambda names; -Wconversion adds sign conversions only in g++'s
  # C mode.
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

# drx9_arrows(NAME [QT] [DEPENDS other names...]): notes who may depend on whom, and who may see Qt.
function(drx9_arrows name)
  cmake_parse_arguments(ARG "QT" "" "DEPENDS" ${ARGN})
  list(JOIN ARG_DEPENDS " " depends)
  set(qt)
  if(ARG_QT)
    set(qt " QT")
  endif()
  set_property(GLOBAL APPEND PROPERTY DRX9_ARROWS "${name}${qt}: ${depends}")
endfunction()

# drx9_write_arrows(FILE): one line a name, "NAME[ QT]: NAME NAME ...".
function(drx9_write_arrows file)
  get_property(arrows GLOBAL PROPERTY DRX9_ARROWS)
  list(JOIN arrows "\n" text)
  file(GENERATE OUTPUT ${file} CONTENT "${text}\n")
endfunction()

# What the names of a DEPENDS are as targets, and the flags of all.
function(drx9_targets result)
  list(TRANSFORM ARGN PREPEND drx9_)
  set(${result} drx9_flags ${ARGN} PARENT_SCOPE)
endfunction()

# drx9_core_library(FOLDER [DEPENDS other names]): all of src/FOLDER that is standard C++. Forms, controls and
# platform/qt are left to the user interface's libraries.
function(drx9_core_library folder)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  drx9_arrows(${folder} DEPENDS ${ARG_DEPENDS})
  drx9_targets(depends ${ARG_DEPENDS})
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${folder}/*.cpp
       ${PROJECT_SOURCE_DIR}/src/${folder}/os/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/frm[^/]*$")
  if(sources)
    add_library(drx9_${folder} STATIC ${sources})
    target_include_directories(drx9_${folder} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(drx9_${folder} PUBLIC ${depends})
    if(NOT DRX9_SANITIZE)
      return()
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      # The optimised build, which has no such headers, keeps these warnings.
      target_compile_options(drx9_${folder} PRIVATE -Wno-stringop-overflow -Wno-array-bounds)
    endif()
    if(folder STREQUAL "util")
      target_precompile_headers(drx9_util PRIVATE ${DRX9_CORE_HEADERS})
    else()
      target_precompile_headers(drx9_${folder} REUSE_FROM drx9_util)
    endif()
  else()
    add_library(drx9_${folder} INTERFACE)
    target_include_directories(drx9_${folder} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(drx9_${folder} INTERFACE ${depends})
  endif()
endfunction()

# drx9_qt_library(NAME [DEPENDS other names] GLOBS patterns... [LIBS targets...]): a library that may see Qt. Without
# LIBS it is one of the windows' libraries: these share their precompiled headers, and so must see the same of Qt.
function(drx9_qt_library name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;GLOBS;LIBS" ${ARGN})
  drx9_arrows(${name} QT DEPENDS ${ARG_DEPENDS})
  if(NOT DRX9_UI)
    return()
  endif()
  drx9_targets(depends ${ARG_DEPENDS})
  set(libraries ${ARG_LIBS})
  if(NOT ARG_LIBS)
    set(libraries Qt6::Widgets)
  endif()
  list(TRANSFORM ARG_GLOBS PREPEND ${PROJECT_SOURCE_DIR}/)
  file(GLOB sources CONFIGURE_DEPENDS ${ARG_GLOBS})
  if(NOT sources)
    add_library(drx9_${name} INTERFACE)
    target_link_libraries(drx9_${name} INTERFACE ${depends} ${libraries})
    return()
  endif()
  add_library(drx9_${name} STATIC ${sources})
  set_target_properties(drx9_${name} PROPERTIES AUTOMOC ON)
  target_include_directories(drx9_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(drx9_${name} PUBLIC ${depends} ${libraries})
  if(ARG_LIBS OR name STREQUAL "controls")
    target_precompile_headers(drx9_${name} PRIVATE ${DRX9_QT_HEADERS})
  else()
    target_precompile_headers(drx9_${name} REUSE_FROM drx9_controls)
  endif()
endfunction()

# drx9_windows(FOLDER [DEPENDS other names]): the windows of src/FOLDER, and the controls that only they use. They depend
# on the folder's own logic. drx9_ui is all windows.
function(drx9_windows folder)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  drx9_qt_library(${folder}_windows DEPENDS ${folder} ${ARG_DEPENDS}
                  GLOBS src/${folder}/frm*.cpp src/${folder}/frm*.h src/${folder}/controls/*.cpp
                        src/${folder}/controls/*.h)
  if(DRX9_UI)
    if(NOT TARGET drx9_ui)
      add_library(drx9_ui INTERFACE)
    endif()
    target_link_libraries(drx9_ui INTERFACE drx9_${folder}_windows)
  endif()
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
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} drx9_test_flags)
  set(environment)
  if(ARG_QT)
    # A QApplication of its own stands in such a folder's main.
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PRIVATE GTest::gtest)
    target_precompile_headers(${name} PRIVATE <gtest/gtest.h> ${DRX9_QT_HEADERS})
    set(environment ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
    target_precompile_headers(${name} REUSE_FROM drx9_test_headers)
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  gtest_discover_tests(${name} TEST_PREFIX ${folder}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT ${ARG_TIMEOUT} ${environment})
endfunction()
