# Shared compile rules and the two helpers every folder uses.

add_library(sondar_common INTERFACE)
target_compile_features(sondar_common INTERFACE cxx_std_20)
target_compile_options(sondar_common INTERFACE -Wall -Wextra -Wpedantic $<$<BOOL:${SONDAR_WERROR}>:-Werror>)
target_compile_definitions(sondar_common INTERFACE
  QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
  QT_NO_URL_CAST_FROM_STRING
  SONDAR_VERSION="${PROJECT_VERSION}")
target_include_directories(sondar_common INTERFACE ${PROJECT_SOURCE_DIR})

# sondar_library(<name> [LINK libs...]): a static library of every source in the calling folder.
function(sondar_library name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS
    ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h ${CMAKE_CURRENT_SOURCE_DIR}/*.qrc)
  list(FILTER sources EXCLUDE REGEX "/app/main\\.cpp$")
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC sondar_common ${ARG_LINK})
  else()
    # A subsystem whose code has not landed yet still takes part in the link graph.
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE sondar_common ${ARG_LINK})
  endif()
endfunction()

# sondar_tests(<name> [LAB] [LINK libs...]): one test executable of every source in the calling folder.
# LAB tests run inside the client namespace of the test lab (tests/netlab), after the lab is built.
function(sondar_tests name)
  cmake_parse_arguments(ARG "LAB" "" "LINK" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE sondar_testsupport ${ARG_LINK})
  if(ARG_LAB)
    # netlab_up starts the lab's echo responder, so building a lab test builds it too.
    add_dependencies(${name} sondar_echo_responder)
    add_test(NAME ${name}
      COMMAND ${PROJECT_SOURCE_DIR}/tests/netlab/lab.sh exec $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES
      FIXTURES_REQUIRED netlab RESOURCE_LOCK netlab TIMEOUT 900
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;SONDAR_NETLAB_BIN=${CMAKE_BINARY_DIR}/tests/netlab")
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
      PROPERTIES ENVIRONMENT "QT_QPA_PLATFORM=offscreen" TIMEOUT 300)
  endif()
endfunction()
